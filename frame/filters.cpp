#include "frame/filters.h"

#include <algorithm>
#include <functional>

#include "toolkit/controls.h"
#include "toolkit/relative_period.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::string_view kToday = "hoje";

bool IsField(const Control& control) {
  if (dynamic_cast<const Edit*>(&control) != nullptr)
    return dynamic_cast<const ReadOnlyEdit*>(&control) == nullptr;
  return dynamic_cast<const CheckBox*>(&control) != nullptr ||
         dynamic_cast<const ListControl*>(&control) != nullptr;
}

const Control* BarOf(const Control& control) {
  const Control* at = control.Parent();
  while (at != nullptr && at->Kind() != "bar") at = at->Parent();
  return at;
}

std::string PlainCaption(const Control& control) { return ReplaceAll(control.Caption(), "&", ""); }

// The box that holds a field and has a caption, null for none.
const Control* BoxOf(const Control& control) {
  const Control* at = control.Parent();
  return at != nullptr && at->Kind() == "group" ? at : nullptr;
}

bool IsFrom(const Control& one, const Control& next) {
  return PlainCaption(one) == "De" && PlainCaption(next) == "Até" && one.Kind() == next.Kind();
}

bool IsDate(const Control& control) { return control.Kind() == "date"; }

std::string* TextOf(FieldTexts& filters, const Control& control) {
  const auto found =
      std::ranges::find_if(filters, [&](const auto& one) { return SameText(one.first, control.Name()); });
  return found == filters.end() ? nullptr : &found->second;
}
std::string TextOf(const FieldTexts& filters, const Control& control) {
  const std::string* found = TextOf(const_cast<FieldTexts&>(filters), control);
  return found == nullptr ? "" : *found;
}

// Calls with the dates of the bar, in pairs where they are the ends of a period, else with null beside it.
void EachDate(const FilterBar& bar, const std::function<void(const Control&, const Control*)>& act) {
  for (std::size_t at = 0; at < bar.fields.size(); ++at) {
    const Control& one = *bar.fields[at];
    if (!IsDate(one)) continue;
    const bool pair = at + 1 < bar.fields.size() && IsFrom(one, *bar.fields[at + 1]);
    act(one, pair ? bar.fields[++at] : nullptr);
  }
}

const RelativePeriod* Relative(std::string_view text) {
  return text.starts_with('@') ? FindRelativePeriod(text.substr(1)) : nullptr;
}

}  // namespace

std::optional<FilterBar> FilterBarOf(const Form& form) {
  for (Control* query : form.Controls()) {
    if (query->Role() != "primary" || query->Kind() != "button") continue;
    const Control* bar = BarOf(*query);
    if (bar == nullptr || !bar->Shown()) continue;
    FilterBar found{query, {}};
    for (Control* control : form.Controls()) {
      if (IsField(*control) && BarOf(*control) == bar) found.fields.push_back(control);
    }
    return found;
  }
  return std::nullopt;
}

std::string FieldText(const Control& control) {
  if (const auto* edit = dynamic_cast<const Edit*>(&control)) return edit->Text();
  if (const auto* check = dynamic_cast<const CheckBox*>(&control)) return check->Checked() ? "true" : "false";
  if (const auto* list = dynamic_cast<const ListControl*>(&control)) return list->Text();
  return "";
}

FieldTexts ReadFilters(const Form& form) {
  FieldTexts filters;
  const auto bar = FilterBarOf(form);
  if (!bar) return filters;
  for (const Control* control : bar->fields) filters.emplace_back(control->Name(), FieldText(*control));
  return filters;
}

FieldTexts WithRelativeDays(const Form& form, FieldTexts filters, Date today) {
  const auto bar = FilterBarOf(form);
  if (!bar) return filters;
  EachDate(*bar, [&](const Control& one, const Control* other) {
    std::string* from = TextOf(filters, one);
    std::string* to = other == nullptr ? nullptr : TextOf(filters, *other);
    if (from == nullptr) return;
    const Date first = Date::ParseBrazilOr(*from, Date());
    const Date last = to == nullptr ? first : Date::ParseBrazilOr(*to, Date());
    if (first.Empty() || last.Empty()) {
      // One end may be open.
      for (std::string* text : {from, to}) {
        if (text != nullptr && *text == today.Brazil()) *text = "@" + std::string(kToday);
      }
      return;
    }
    const RelativePeriod* relative = RelativePeriodOf(first, last, today);
    if (relative == nullptr) return;
    for (std::string* text : {from, to}) {
      if (text != nullptr) *text = "@" + std::string(relative->code);
    }
  });
  return filters;
}

FieldTexts WithDays(const Form& form, FieldTexts filters, Date today) {
  const auto bar = FilterBarOf(form);
  if (!bar) return filters;
  const auto give = [&](const Control* control, bool first) {
    std::string* text = control == nullptr ? nullptr : TextOf(filters, *control);
    const RelativePeriod* relative = text == nullptr ? nullptr : Relative(*text);
    if (relative == nullptr) return;
    const auto [from, to] = relative->days(today);
    *text = (first ? from : to).Brazil();
  };
  EachDate(*bar, [&](const Control& one, const Control* other) {
    give(&one, true);
    give(other, false);
  });
  return filters;
}

std::vector<std::string> ToldFilters(const Form& form, const FieldTexts& filters, const FieldTexts& began) {
  std::vector<std::string> told;
  const auto bar = FilterBarOf(form);
  if (!bar) return told;
  const auto text = [&](const Control& control) {
    const std::string said = TextOf(filters, control);
    const RelativePeriod* relative = Relative(said);
    return relative == nullptr ? said : Lower(relative->name);
  };
  const auto changed = [&](const Control& control) {
    const std::string said = TextOf(filters, control);
    return said != TextOf(began, control);
  };
  std::string last;
  for (std::size_t at = 0; at < bar->fields.size(); ++at) {
    const Control& one = *bar->fields[at];
    const Control* box = BoxOf(one);
    if (at + 1 < bar->fields.size() && IsFrom(one, *bar->fields[at + 1])) {
      const Control& other = *bar->fields[++at];
      if (!IsDate(one) && !changed(one) && !changed(other)) continue;
      const std::string from = text(one), to = text(other);
      const std::string caption = box != nullptr ? PlainCaption(*box) : IsDate(one) ? "Período" : last;
      if (from.empty() && to.empty()) continue;
      told.push_back(caption + ": " +
                     (from == to     ? from
                      : from.empty() ? "até " + to
                      : to.empty()   ? "a partir de " + from
                                     : from + " a " + to));
      continue;
    }
    if (!PlainCaption(one).empty()) last = PlainCaption(one);
    if (!changed(one)) continue;
    // Captions that say nothing by themselves stand behind their box's.
    const bool alone = std::ranges::count_if(bar->fields, [&](const Control* field) {
                         return PlainCaption(*field) == PlainCaption(one);
                       }) == 1;
    const std::string caption = box != nullptr && !alone ? PlainCaption(*box) + ", " + last : last;
    if (dynamic_cast<const CheckBox*>(&one) != nullptr) {
      told.push_back(caption + ": " + (text(one) == "true" ? "sim" : "não"));
    } else {
      told.push_back(caption + ": " + (text(one).empty() ? "(vazio)" : text(one)));
    }
  }
  return told;
}

std::optional<std::pair<Date, Date>> PeriodOf(const Form& form, const FieldTexts& filters,
                                              const FieldTexts& began) {
  std::optional<std::pair<Date, Date>> period;
  const auto bar = FilterBarOf(form);
  if (!bar) return period;
  EachDate(*bar, [&](const Control& one, const Control* other) {
    if (other == nullptr || period) return;
    const std::string from = TextOf(filters, one), to = TextOf(filters, *other);
    if (from == TextOf(began, one) && to == TextOf(began, *other)) return;
    const Date first = Date::ParseBrazilOr(from, Date()), last = Date::ParseBrazilOr(to, Date());
    if (!first.Empty() && !last.Empty()) period = {first, last};
  });
  return period;
}

}  // namespace orv
