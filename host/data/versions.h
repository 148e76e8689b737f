// How much of a database is versions of rows that nobody needs any more.
#pragma once

#include <cstdint>
#include <string_view>

namespace orv {

// Versions of the table's rows beside the current ones, as the engine's statistics count them. Raises
// DatabaseError.
int64_t DeadVersions(std::string_view database, std::string_view table);

}  // namespace orv
