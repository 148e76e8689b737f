// The functions that the module's SQL takes for given in the database.
#pragma once

#include <string>
#include <vector>

namespace orv {

// CREATE OR ALTER FUNCTION for each.
const std::vector<std::string>& FunctionSql();

}  // namespace orv
