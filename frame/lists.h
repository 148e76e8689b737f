// Values of IN (...), so many at a time as a statement takes.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orv {

// The literals in lists, "'01','02'", each handed on once, in their order; nothing without any.
void EmListas(const std::vector<std::string>& literais,
              const std::function<void(const std::string&)>& trabalho);

}  // namespace orv
