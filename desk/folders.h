// Where the desk keeps the files of its users.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace orv {

// The folder given, or $XDG_DATA_HOME/orvcc, or ~/.local/share/orvcc.
std::filesystem::path DataFolder(const std::string& given);

// The user's own folder below the data folder, one for each company. A login's characters that mean something
// in a path, and its capitals, which a login doesn't distinguish, are written so that no two users meet and
// none leaves the folder.
std::filesystem::path UserFolder(const std::filesystem::path& data, std::string_view login,
                                 std::string_view company);

// What the desk keeps for the time of its sessions: reports and uploads. Nothing in it outlives the desk.
std::filesystem::path ScratchFolder(const std::filesystem::path& data);

// Where templates of reports stand that take precedence over the desk's own.
std::filesystem::path TemplatesFolder(const std::filesystem::path& data);

}  // namespace orv
