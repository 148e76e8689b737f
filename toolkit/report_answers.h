// What a form answers to the names in a report's template that the report doesn't know by itself.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <unordered_map>

#include "toolkit/text.h"
#include "toolkit/value.h"

namespace orv {

// A value, which has no parameters and is asked once a report, or a function, which is worked out wherever a
// row asks. What it raises costs the cell that asked.
struct ReportAnswer {
  std::size_t parameters = 0;
  std::function<Value(std::span<const Value>)> work;
};

using ReportAnswers = std::unordered_map<std::string, ReportAnswer, NameHash, NameEqual>;

}  // namespace orv
