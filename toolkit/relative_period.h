// Periods that move with the day: "Este mês", "Últimos 30 dias".
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "toolkit/date.h"

namespace orv {

struct RelativePeriod {
  std::string_view code;  // as it is kept: "mes"
  std::string_view name;
  // The first and the last day, seen from `today`.
  std::pair<Date, Date> (*days)(Date today);
};

// Where several fit the same days the first one is meant. The page offers the same ones in its calendar.
std::span<const RelativePeriod> RelativePeriods();
// Null for an unknown code.
const RelativePeriod* FindRelativePeriod(std::string_view code);
// The one that has these days today, null for none.
const RelativePeriod* RelativePeriodOf(Date from, Date to, Date today);

}  // namespace orv
