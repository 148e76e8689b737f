#include "toolkit/relative_period.h"

#include <algorithm>
#include <array>

namespace orv {
namespace {

using Days = std::pair<Date, Date>;

Date MonthBegin(Date day, int months = 0) {
  const int count = day.Year() * 12 + day.Month() - 1 + months;
  return {count / 12, count % 12 + 1, 1};
}
Days Months(Date first, int count) { return {first, MonthBegin(first, count).AddDays(-1)}; }
Days Year(int year) { return {Date(year, 1, 1), Date(year, 12, 31)}; }

constexpr auto kPeriods = std::to_array<RelativePeriod>({
    {"hoje", "Hoje",
     [](Date today) {
       return Days{today, today};
     }},
    {"mes", "Este mês", [](Date today) { return Months(MonthBegin(today), 1); }},
    {"mes-1", "Mês passado", [](Date today) { return Months(MonthBegin(today, -1), 1); }},
    {"ano", "Este ano", [](Date today) { return Year(today.Year()); }},
    {"ano-1", "Ano passado", [](Date today) { return Year(today.Year() - 1); }},
    {"dias-7", "Últimos 7 dias",
     [](Date today) {
       return Days{today.AddDays(-6), today};
     }},
    {"dias-30", "Últimos 30 dias",
     [](Date today) {
       return Days{today.AddDays(-29), today};
     }},
    {"dias+30", "Próximos 30 dias",
     [](Date today) {
       return Days{today, today.AddDays(29)};
     }},
});

}  // namespace

std::span<const RelativePeriod> RelativePeriods() { return kPeriods; }

const RelativePeriod* FindRelativePeriod(std::string_view code) {
  const auto found = std::ranges::find(kPeriods, code, &RelativePeriod::code);
  return found == kPeriods.end() ? nullptr : &*found;
}

const RelativePeriod* RelativePeriodOf(Date from, Date to, Date today) {
  const auto found =
      std::ranges::find_if(kPeriods, [&](const auto& one) { return one.days(today) == Days(from, to); });
  return found == kPeriods.end() ? nullptr : &*found;
}

}  // namespace orv
