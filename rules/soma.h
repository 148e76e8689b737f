// Sums of amounts in statements.
#pragma once

#include <string>
#include <string_view>

#include "toolkit/currency.h"
#include "toolkit/value.h"

namespace orv {

// The sum of an expression, for a select list. It is exact and of any size, which the engine's own, of 64
// bits, isn't.
std::string Soma(std::string_view valor);
// What such a column holds; zero for null.
Currency SomaDe(const Value& soma);

}  // namespace orv
