#include "desk/folders.h"

#include <cstdlib>

#include "toolkit/text.h"

namespace orv {

std::filesystem::path DataFolder(const std::string& given) {
  if (!given.empty()) return given;
  if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg != nullptr && *xdg != '\0') {
    return std::filesystem::path(xdg) / "orvcc";
  }
  const char* home = std::getenv("HOME");
  return std::filesystem::path(home != nullptr ? home : "/tmp") / ".local/share/orvcc";
}

std::filesystem::path UserFolder(const std::filesystem::path& data, std::string_view login,
                                 std::string_view company) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string name;
  for (const char c : Lower(Trim(login))) {
    const bool plain = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '@' ||
                       (c == '.' && !name.empty());
    if (plain) {
      name += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    name += {'%', kHex[byte >> 4], kHex[byte & 15]};
  }
  return data / "users" / name / company;
}

std::filesystem::path ScratchFolder(const std::filesystem::path& data) { return data / "sessoes"; }

std::filesystem::path TemplatesFolder(const std::filesystem::path& data) { return data / "relatorios"; }

}  // namespace orv
