#include "frame/daily_chart.h"

#include <algorithm>
#include <array>
#include <vector>

#include "frame/report_set.h"

namespace orv {
namespace {

constexpr std::size_t kMostPoints = 36;

constexpr auto kFields = std::to_array<ReportField>({
    {"Periodo", FieldType::String, 10},
    {"Entradas", FieldType::Currency},
    {"Saidas", FieldType::Currency},
    {"Saldo", FieldType::Currency},
});

// A day as one of its point: itself, its month, its year.
Date DayOf(Date day) { return day; }
Date MonthOf(Date day) { return {day.Year(), day.Month(), 1}; }
Date YearOf(Date day) { return {day.Year(), 1, 1}; }

struct Step {
  Date (*point)(Date day);
  std::size_t label;  // where a point's name begins in "dd/mm/aaaa"
};
constexpr Step kSteps[] = {{DayOf, 0}, {MonthOf, 3}, {YearOf, 6}};

}  // namespace

DailyChart::DailyChart(Form& form, const std::string& name, std::string caption)
    : Rows("Tb" + name),
      Picture(form, name, std::move(caption), Rows, "Periodo",
              {{"Entradas", "Entradas", false}, {"Saidas", "Saídas", false}, {"Saldo", "Saldo", true}},
              static_cast<int>(kMostPoints)) {
  LayDown(Rows, kFields);
}

void DailyChart::Clear() {
  days_.clear();
  Rows.EmptyDataSet();
}

void DailyChart::Add(Date day, Currency in, Currency out) {
  if (day.Empty()) return;
  Sums& sums = days_[day];
  sums.in += in;
  sums.out += out;
}

void DailyChart::Show(Currency before) {
  const auto points = [&](const Step& step) {
    std::map<Date, Sums> found;
    for (const auto& [day, sums] : days_) {
      found[step.point(day)].in += sums.in;
      found[step.point(day)].out += sums.out;
    }
    return found;
  };
  const Step* step = std::begin(kSteps);
  auto shown = points(*step);
  while (shown.size() > kMostPoints && step + 1 != std::end(kSteps)) shown = points(*++step);
  const ControlsHold hold({&Rows});
  Rows.EmptyDataSet();
  for (const auto& [day, sums] : shown) {
    before += sums.in - sums.out;
    Value row[] = {Value(day.Brazil().substr(step->label)), Value(sums.in), Value(sums.out), Value(before)};
    Rows.AppendRow(row);
  }
  Rows.First();
}

}  // namespace orv
