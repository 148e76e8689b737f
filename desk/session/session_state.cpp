// What the desk tells of its screens: the tree when one is shown, the changes after each action, the state
// when asked.
#include "desk/session/session.h"
#include "frame/screen.h"
#include "toolkit/grid.h"
#include "toolkit/lookup.h"
#include "toolkit/text.h"

namespace orv {
namespace {

Json PropertyJson(const Property& property) {
  if (const bool* b = std::get_if<bool>(&property)) return *b;
  if (const int64_t* n = std::get_if<int64_t>(&property)) return *n;
  if (const std::string* s = std::get_if<std::string>(&property)) return *s;
  Json::Array items;
  for (const std::string& item : std::get<std::vector<std::string>>(property)) items.emplace_back(item);
  return items;
}

Properties AllProperties(const Control& control) {
  Properties properties;
  properties.emplace_back("kind", std::string(control.Kind()));
  control.DescribeFixed(properties);
  control.Describe(properties);
  return properties;
}

std::string FocusName(const Form& form) { return form.Focus() == nullptr ? "" : form.Focus()->Name(); }

}  // namespace

Json Session::ControlNode(const Control& control) const {
  Json node{{"name", control.Name()}};
  if (!control.Role().empty()) node.Set("role", control.Role());
  if (control.Span() > 0) node.Set("span", control.Span());
  for (const auto& [name, value] : AllProperties(control)) node.Set(name, PropertyJson(value));
  if (!control.Container()) return node;
  Json::Array rows;
  for (const LayoutRow& row : control.Rows()) {
    Json::Array nodes;
    for (const Control* child : row) nodes.push_back(ControlNode(*child));
    rows.emplace_back(std::move(nodes));
  }
  node.Set("layout", std::move(rows));
  return node;
}

Json Session::Tree(const Form& form) const {
  Json::Array rows;
  for (const LayoutRow& row : form.Rows()) {
    Json::Array nodes;
    for (const Control* control : row) nodes.push_back(ControlNode(*control));
    rows.emplace_back(std::move(nodes));
  }
  return {{"layout", std::move(rows)}, {"keyPreview", form.KeyPreview}};
}

void Session::Collect(bool ended) {
  for (Screen* screen : application_->Shown()) {
    try {
      CollectScreen(*screen, shown_[screen], ended);
    } catch (const SilentAbort&) {
    } catch (const std::exception& e) {
      ToldFailure("collect", e);
    }
  }
  const int64_t front = TopId();
  if (front != front_ && front != 0) Send({{"on", "front"}, {"screen", front}});
  front_ = front;
}

void Session::CollectScreen(Screen& screen, Shown& shown, bool ended) {
  const bool all = std::exchange(shown.behind, true);
  Json::Object controls;
  Json::Object sets;
  // As told once all of it was looked at.
  std::map<const Control*, Properties> described;
  std::map<const DataSet*, std::string> moved;
  for (DataSet* set : screen.Sets()) {
    if (set->ControlsDisabled()) continue;
    const Json told{{"version", set->Version()},
                    {"count", set->Active() ? set->DisplayCount() : 0},
                    {"row", set->Active() ? set->DisplayRow() : -1},
                    {"state", StateName(set->State())}};
    std::string text = told.Text();
    if (shown.sets[set] == text) continue;
    moved[set] = std::move(text);
    sets.emplace_back(set->Name(), told);
  }
  for (Control* control : screen.Controls()) {
    const bool bound = control->BoundSet() != nullptr;
    const bool touched = control->TakeDirty() || all;
    if (!touched && !(bound && (moved.count(control->BoundSet()) > 0 || shown.sent.empty()))) continue;
    Properties& now = described[control];
    control->Describe(now);
    const Properties& before = shown.sent[control];
    Json::Object changed;
    for (std::size_t i = 0; i < now.size(); ++i) {
      const bool same = before.size() == now.size() && before[i] == now[i];
      if (!same) changed.emplace_back(now[i].first, PropertyJson(now[i].second));
    }
    if (!changed.empty()) controls.emplace_back(control->Name(), std::move(changed));
  }
  for (auto& [control, properties] : described) shown.sent[control] = std::move(properties);
  for (auto& [set, text] : moved) shown.sets[set] = std::move(text);
  shown.behind = false;
  std::string focus = FocusName(screen);
  const bool refocused = focus != shown.focus;
  shown.focus = std::move(focus);
  const bool named = screen.Badge() != shown.badge;
  shown.badge = screen.Badge();
  const Json record = ended ? RecordOf(screen, shown) : Json();
  const bool another = ended && record.Text() != shown.record && !(record.IsNull() && shown.record.empty());
  if (another) shown.record = record.IsNull() ? "" : record.Text();
  if (controls.empty() && sets.empty() && !refocused && !named && !another) return;
  Json change{{"on", "change"}, {"screen", shown.id}, {"controls", std::move(controls)}};
  if (refocused) change.Set("focus", shown.focus);
  if (named) change.Set("badge", shown.badge);
  if (another) change.Set("record", record);
  if (!sets.empty()) change.Set("sets", std::move(sets));
  Send(change);
}

std::pair<int64_t, int64_t> Session::Clamped(int64_t from, int64_t count, int64_t all) {
  const int64_t first = std::clamp<int64_t>(from, 0, all);
  return {first, count < 0 || count > all - first ? all : first + count};
}

std::pair<int64_t, int64_t> Session::RowsAsked(DataSet& set, int64_t from, int64_t count) {
  const auto [first, last] = Clamped(from, count, set.Active() ? set.DisplayCount() : 0);
  if (last > first) set.Prepare(first, last - first);
  return {first, last};
}

Json Session::Rows(DataSet& set, int64_t from, int64_t count) {
  Json::Array fields;
  for (const Field* field : set.Fields()) fields.emplace_back(field->Name());
  Json out{{"fields", std::move(fields)},
           {"count", set.Active() ? set.DisplayCount() : 0},
           {"row", set.Active() ? set.DisplayRow() : -1},
           {"state", StateName(set.State())},
           {"version", set.Version()}};
  Json::Array rows;
  const auto [first, last] = RowsAsked(set, from, count);
  for (int64_t row = first; row < last; ++row) {
    Json::Array values;
    for (const Field* field : set.Fields()) {
      const Value value = set.Cell(row, *field);
      values.push_back(value.IsNull() ? Json() : Json(value.Neutral()));
    }
    rows.emplace_back(std::move(values));
  }
  out.Set("rows", std::move(rows));
  return out;
}

Json Session::State(const Json& in) const {
  const std::string only = in["control"].IsNull() ? "" : in["control"].String();
  const int64_t from = in["from"].IsNull() ? 0 : in["from"].Integer();
  int64_t count = in["count"].IsNull() ? -1 : in["count"].Integer();
  if (options_.max_rows && (count < 0 || count > *options_.max_rows)) count = *options_.max_rows;
  Json::Array screens;
  for (Screen* screen : application_->Shown()) {
    Json::Object controls;
    for (const Control* control : screen->Controls()) {
      if (!only.empty() && !SameText(only, control->Name())) continue;
      Json properties;
      for (const auto& [name, value] : AllProperties(*control)) properties.Set(name, PropertyJson(value));
      controls.emplace_back(control->Name(), std::move(properties));
      // The window of rows that a grid shows, as it shows them.
      if (const auto* grid = dynamic_cast<const TOrvDBGrid*>(control); grid != nullptr && !only.empty())
        AddWindow(controls.back().second, *grid, in, from, count);
    }
    Json::Object sets;
    for (DataSet* set : screen->Sets()) {
      if (only.empty() || SameText(only, set->Name()))
        sets.emplace_back(set->Name(), Rows(*set, from, count));
    }
    // The open list of a lookup, under the lookup's name.
    if (auto* lookup = dynamic_cast<TPesquisa*>(screen->Find(only));
        lookup != nullptr && lookup->Rows() != nullptr) {
      sets.emplace_back(lookup->Name(), Rows(*lookup->Rows(), from, count));
    }
    screens.push_back(Json{{"id", shown_.count(screen) > 0 ? shown_.at(screen).id : 0},
                           {"class", screen->ClassName()},
                           {"caption", screen->Caption()},
                           {"focus", FocusName(*screen)},
                           {"controls", std::move(controls)},
                           {"sets", std::move(sets)}});
  }
  return {{"on", "state"}, {"screens", std::move(screens)}};
}

}  // namespace orv
