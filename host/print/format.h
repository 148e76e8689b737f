// Values as a report prints them.
#pragma once

#include <string>
#include <string_view>

#include "toolkit/value.h"

namespace orv {

// A number by "#,##0.00" (a "," asks for thousand points, as many decimals as places after the "."), printed
// in the Brazilian form; a date by "dd/mm/yy - dddd", "mmmm/yyyy", "dd/mm/yyyy hh:nn". "" prints the value as
// a screen would. A format that doesn't go with the value prints it so, too.
std::string FormatValue(const Value& value, std::string_view format);

}  // namespace orv
