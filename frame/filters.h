// What a person sets in the bar of a screen before he asks for its rows: read and told. Set again by
// frame/fill.h.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "frame/fill.h"
#include "toolkit/date.h"

namespace orv {

class Control;
class Form;

// The bar of the page in front that asks for rows.
struct FilterBar {
  Control* query = nullptr;  // the button that asks
  std::vector<Control*> fields;
};
std::optional<FilterBar> FilterBarOf(const Form& form);

// What a control says, as it would be given to it; "" for one that says nothing.
std::string FieldText(const Control& control);

// What its fields say, in the order of the page; nothing for a screen without such a bar.
FieldTexts ReadFilters(const Form& form);

// With days that move with today in place of fixed ones: a period that is a relative one
// (toolkit/relative_period.h), and a date that is today's, are named "@mes".
FieldTexts WithRelativeDays(const Form& form, FieldTexts filters, Date today);
// The other way round, as the days are today.
FieldTexts WithDays(const Form& form, FieldTexts filters, Date today);

// As a person reads them, each with its caption: "Período: 01/11/2026 a 30/11/2026", "Conta: 001-X". Periods
// always, all others where they aren't what the screen began with. Relative days by their names.
std::vector<std::string> ToldFilters(const Form& form, const FieldTexts& filters, const FieldTexts& began);

// The first period among the filters, where its dates aren't those that the screen began with.
std::optional<std::pair<Date, Date>> PeriodOf(const Form& form, const FieldTexts& filters,
                                              const FieldTexts& began);

}  // namespace orv
