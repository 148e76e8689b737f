// Copies of a database, taken while it is in use.
#pragma once

#include <string>
#include <string_view>

namespace orv {

// Writes a backup of the database, a file or at a server, to a file of this machine. Others go on working;
// what is committed when it begins is in it. Refuses an existing file. Raises DatabaseError.
void Backup(std::string_view database, const std::string& file);

// Makes a database, a file or at a server, from a backup. Refuses an existing one. Raises DatabaseError, also
// for a backup that isn't whole, of which no file is left; a server can keep a half-made database.
void Restore(const std::string& file, std::string_view database);

}  // namespace orv
