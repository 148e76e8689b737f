// The database's own structure, as its engine examines it: pages, records, indexes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orv {

// Lines in Portuguese, of many only the first ones.
struct Validation {
  // What is damaged, with the engine's own words.
  std::vector<std::string> damage;
  // Tables on which somebody had writes open for longer than ten seconds.
  std::vector<std::string> unexamined;
};

// The database stays in use meanwhile: writers wait while their table's turn is on. Changes nothing. Raises
// DatabaseError.
Validation Validate(std::string_view database);

}  // namespace orv
