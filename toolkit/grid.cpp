#include "toolkit/grid.h"

#include <algorithm>
#include <utility>

#include "toolkit/grid_view.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// Of an amount in an input over a field.
constexpr int kDecimals = 2;

constexpr const char* kNoSuchRow = "A linha não existe mais. Atualize a lista.";

// Below it a float is an amount and not merely a number.
constexpr double kMostAmount = 1e27;

// A number in the Brazilian form: two decimals always, and more up to so many where they aren't zeros.
std::string NumberText(const Value& value, int decimals) {
  if (std::abs(value.AsFloat()) >= kMostAmount) return value.AsString();
  std::string text = value.AsCurrency().Brazil(decimals);
  for (; decimals > kDecimals && text.back() == '0'; --decimals) text.pop_back();
  return text;
}

// What a person typed into a field, as a value of the field's type. An amount or a number has up to so many
// decimals.
Value Typed(const Field& field, std::string_view text, int decimals) {
  const std::string_view trimmed = Trim(text);
  switch (field.Type()) {
    case FieldType::String:
      return Value(CleanUtf8(text));
    case FieldType::Currency:
      return trimmed.empty() ? Value() : Value(Currency::ParseTyped(trimmed, decimals));
    case FieldType::Float:
      return trimmed.empty() ? Value() : Value(Currency::ParseTyped(trimmed, decimals).ToDouble());
    case FieldType::Integer:
      return trimmed.empty() ? Value() : Value(ParseInteger(trimmed));
    case FieldType::Date:
    case FieldType::DateTime:
      return Value(Date::ParseBrazil(trimmed));
  }
  return Value();
}

// A moment that is a day is shown as one.
std::string ShownText(const Field& field, const Value& value, int decimals) {
  constexpr int64_t kSecondsOfDay = 86400;
  if (field.Type() == FieldType::DateTime && !value.IsNull() &&
      value.AsDateTime().Seconds() % kSecondsOfDay == 0)
    return value.AsDate().Brazil();
  const bool number = field.Type() == FieldType::Currency || field.Type() == FieldType::Float;
  return number && !value.IsNull() ? NumberText(value, decimals) : value.AsString();
}

}  // namespace

// --- TOrvDBGrid.

TOrvDBGrid::TOrvDBGrid(Form& form, std::string name, DataSet& set, std::vector<GridColumn> columns,
                       bool read_only, std::string caption)
    : Control(form, std::move(name), std::move(caption)),
      set_(set),
      columns_(std::move(columns)),
      read_only_(read_only),
      view_(std::make_unique<GridView>(*this)) {}

TOrvDBGrid::~TOrvDBGrid() = default;

GridColumn* TOrvDBGrid::FindColumn(std::string_view field) {
  for (GridColumn& column : columns_) {
    if (SameText(column.field, field)) return &column;
  }
  return nullptr;
}

const GridColumn& TOrvDBGrid::Column(std::string_view field) const {
  for (const GridColumn& column : columns_) {
    if (column.visible && SameText(column.field, field)) return column;
  }
  throw UserError("A coluna \"" + std::string(field) + "\" não está na grade.");
}

void TOrvDBGrid::SetColumnTitle(std::string_view field, std::string title) {
  GridColumn* column = FindColumn(field);
  ORV_ASSERT(column != nullptr);
  column->title = std::move(title);
  Touch();
}

void TOrvDBGrid::SetColumnVisible(std::string_view field, bool visible) {
  GridColumn* column = FindColumn(field);
  ORV_ASSERT(column != nullptr);
  column->visible = visible;
  Touch();
}

void TOrvDBGrid::SetColumnReadOnly(std::string_view field, bool read_only) {
  GridColumn* column = FindColumn(field);
  ORV_ASSERT(column != nullptr);
  column->read_only = read_only;
  Touch();
}

void TOrvDBGrid::SetReadOnly(bool read_only) {
  if (read_only == read_only_) return;
  read_only_ = read_only;
  Touch();
}

std::string TOrvDBGrid::CellText(int64_t row, const GridColumn& column) const {
  const Field* field = set_.FindField(column.field);
  if (field == nullptr) return "";
  const Value value = set_.Cell(row, *field);
  return column.checked.empty() ? ShownText(*field, value, column.decimals) : value.AsString();
}

std::string TOrvDBGrid::ReadText(const GridColumn& column, const Field& field, const Value& value) {
  if (!column.checked.empty()) return value.AsString() == column.checked ? "Sim" : "Não";
  std::string text = ShownText(field, value, column.decimals);
  for (const CodeWord& code : column.words) {
    if (code.code == text) return code.word;
  }
  return text;
}

void TOrvDBGrid::FindZeros() const {
  zeros_version_ = set_.RowsVersion();
  zeros_.clear();
  // Of no rows nothing is known.
  if (!drop_zeros_ || !set_.Active() || set_.RecordCount() == 0) return;
  std::vector<const Field*> fields;
  for (const GridColumn& column : columns_) {
    const Field* field = set_.FindField(column.field);
    if (field == nullptr || (field->Type() != FieldType::Currency && field->Type() != FieldType::Float))
      continue;
    zeros_.push_back(&column);
    fields.push_back(field);
  }
  std::vector<bool> filled(fields.size());
  set_.Walk(fields, [&](std::span<const Value* const> cells) {
    for (std::size_t at = 0; at < cells.size(); ++at) {
      if (!filled[at] && !cells[at]->IsNull() && cells[at]->AsFloat() != 0) filled[at] = true;
    }
  });
  std::size_t at = 0;
  std::erase_if(zeros_, [&](const GridColumn*) { return filled[at++]; });
}

std::vector<const GridColumn*> TOrvDBGrid::ShownColumns() const {
  if (zeros_version_ != set_.RowsVersion()) FindZeros();
  std::vector<const GridColumn*> shown;
  for (const GridColumn& column : columns_) {
    if (column.visible && std::find(zeros_.begin(), zeros_.end(), &column) == zeros_.end())
      shown.push_back(&column);
  }
  return shown;
}

void TOrvDBGrid::CheckRow(int64_t row) const {
  if (!set_.Active() || row < 0 || row >= set_.DisplayCount()) throw UserError(kNoSuchRow);
}

void TOrvDBGrid::Select(std::string_view column) {
  if (column.empty()) return;
  const std::string& field = Column(column).field;
  inside_ = true;
  if (field == selected_) return;
  selected_ = field;
  Touch();
  if (OnColEnter) OnColEnter();
}

void TOrvDBGrid::SetSelectedField(std::string_view field) {
  selected_ = Column(field).field;
  inside_ = true;
  // The same column may be another one to who has gone on meanwhile.
  ++placed_;
  Touch();
}

void TOrvDBGrid::LeaveCell() {
  if (!std::exchange(inside_, false)) return;
  // By value: a handler may put another in its place.
  if (const auto exit = OnColExit) exit();
}

bool TOrvDBGrid::Leaving() {
  LeaveCell();
  return true;
}

std::string TOrvDBGrid::NextColumn() const {
  const auto shown = ShownColumns();
  const auto here = std::find_if(shown.begin(), shown.end(),
                                 [this](const GridColumn* column) { return column->field == selected_; });
  return here == shown.end() || here + 1 == shown.end() ? "" : (*(here + 1))->field;
}

void TOrvDBGrid::UserRow(int64_t row, std::string_view column) {
  CheckRow(row);
  const bool other_row = set_.DisplayRow() != row;
  if (other_row || (!column.empty() && Column(column).field != selected_)) LeaveCell();
  GoTo(row);
  if (other_row) inside_ = !selected_.empty();
  Select(column);
}

void TOrvDBGrid::GoTo(int64_t row) {
  CheckRow(row);
  if (set_.DisplayRow() == row) return;
  const int64_t before = set_.DisplayCount();
  set_.PostIfEditing();
  // Posting may have reordered or dropped rows; a row that is no longer there can't be reached.
  if (row >= set_.DisplayCount()) {
    if (set_.DisplayCount() < before) return;
    throw UserError(kNoSuchRow);
  }
  if (set_.DisplayRow() != row) set_.SetRecNo(row + 1);
}

void TOrvDBGrid::UserCell(int64_t row, std::string_view column_name, std::string_view text) {
  const GridColumn& column = Column(column_name);
  if (read_only_ || column.read_only || !set_.CanModify()) throw UserError("Esta coluna é só de leitura.");
  Field* field = set_.FindField(column.field);
  if (field == nullptr) throw UserError("A grade está vazia.");
  Value value;
  if (column.checked.empty()) {
    value = Typed(*field, text, column.decimals);
  } else if (text == "true" || text == column.checked) {
    value = Value(column.checked);
  } else if (text == "false" || text == column.unchecked) {
    value = Value(column.unchecked);
  } else {
    throw UserError("\"" + std::string(text) + "\" não é um valor desta coluna.");
  }
  UserRow(row, column_name);
  set_.Edit();
  field->Set(std::move(value));
}

void TOrvDBGrid::UserAppend() {
  if (read_only_ || rows_fixed_ || !set_.CanModify()) throw UserError("Aqui não se incluem linhas.");
  LeaveCell();
  set_.Append();
}

void TOrvDBGrid::UserDelete(int64_t row) {
  if (read_only_ || rows_fixed_ || !set_.CanModify()) throw UserError("Aqui não se excluem linhas.");
  UserRow(row);
  set_.Delete();
}

void TOrvDBGrid::UserDblClick(int64_t row, std::string_view column) {
  UserRow(row, column);
  if (OnDblClick) OnDblClick();
}

void TOrvDBGrid::UserTitle(std::string_view column) {
  const std::string field = Column(column).field;
  if (OnTitleClick) OnTitleClick(field);
}

void TOrvDBGrid::UserKeyAt(int64_t row, KeyPress& key) {
  // A key on an empty grid still reaches its handler: an append comes so.
  if (set_.Active() && set_.DisplayCount() > 0) {
    UserRow(row, key.column);
  } else {
    Select(key.column);
  }
  UserKey(key);
  // The display goes on to the next column by itself; the program may send the user elsewhere.
  const GridColumn* column = FindColumn(selected_);
  const bool leaves = key.key == "Tab" || (key.key == "Enter" && column != nullptr && !column->read_only);
  if (key.handled || read_only_ || column == nullptr || !leaves || !Watched()) return;
  const int64_t placed = placed_;
  LeaveCell();
  if (placed == placed_) Select(NextColumn());
}

void TOrvDBGrid::UserView(std::string_view sort, bool descending, std::string_view find,
                          const std::vector<std::string>& among) {
  // As long as anybody types to find a row.
  constexpr std::size_t kLongest = 100;
  if (CharCount(find) > kLongest) throw UserError("O texto a procurar é longo demais.");
  std::vector<std::string> fields;
  for (const std::string& one : among) fields.push_back(Column(one).field);
  std::string by = sort.empty() ? "" : Column(sort).field;
  if (set_.Editing()) {
    LeaveCell();
    set_.PostIfEditing();
  }
  view_->Arrange(std::move(by), descending, std::string(find), std::move(fields));
  Touch();
}

void TOrvDBGrid::Describe(Properties& properties) const {
  Control::Describe(properties);
  properties.emplace_back("set", set_.Name());
  properties.emplace_back("readOnly", read_only_);
  properties.emplace_back("rowsFixed", rows_fixed_);
  properties.emplace_back("selected", selected_);
  properties.emplace_back("fontSize", int64_t{font_size_});
  // The display tells of each column that the user reaches, and follows where the program put him.
  properties.emplace_back("watched", Watched());
  properties.emplace_back("placed", placed_);
  // The click on a title is the screen's own.
  properties.emplace_back("titles", OnTitleClick != nullptr);
  // How the display orders and narrows the rows: another number for another arrangement, 0 for the set's own;
  // how many rows are left; the place of the current one, -1 where it isn't among them.
  properties.emplace_back("sort", view_->Sort());
  properties.emplace_back("descending", view_->Descending());
  properties.emplace_back("find", view_->Find());
  properties.emplace_back("view", view_->Number());
  properties.emplace_back("viewCount", view_->Active() ? view_->Count() : int64_t{0});
  properties.emplace_back("viewRow",
                          view_->Active() && set_.Active() ? view_->PlaceOf(set_.DisplayRow()) : int64_t{-1});
  // One text a column, its parts parted by tabs: field, title, width, kind, read-only, decimals, check
  // values, then code, word and tone of each code that has a word.
  std::vector<std::string> columns;
  for (const GridColumn* shown : ShownColumns()) {
    const GridColumn& column = *shown;
    const Field* field = set_.FindField(column.field);
    const bool number = field != nullptr && field->Type() != FieldType::String &&
                        field->Type() != FieldType::Date && field->Type() != FieldType::DateTime;
    const bool date = field != nullptr && field->Type() == FieldType::Date;
    const char* kind = !column.checked.empty() ? "check" : number ? "number" : date ? "date" : "text";
    const int width = column.width > 0 ? column.width : field != nullptr ? field->Size() : 0;
    std::vector<std::string> parts{column.field,
                                   column.title,
                                   std::to_string(width),
                                   kind,
                                   column.read_only ? "1" : "0",
                                   std::to_string(column.decimals),
                                   column.checked,
                                   column.unchecked};
    for (const CodeWord& code : column.words) parts.insert(parts.end(), {code.code, code.word, code.tone});
    columns.push_back(Join(parts, "\t"));
  }
  properties.emplace_back("columns", std::move(columns));
}

// --- DBEdit.

std::string DBEdit::Text() const {
  const Field* field = set_.FindField(field_);
  return field == nullptr || !set_.Active() ? "" : ShownText(*field, field->Get(), kDecimals);
}

std::string_view DBEdit::Kind() const {
  const Field* field = set_.FindField(field_);
  if (field == nullptr) return "edit";
  if (field->Type() == FieldType::Date) return "date";
  return field->Type() == FieldType::Currency || field->Type() == FieldType::Float ? "money" : "edit";
}

void DBEdit::Describe(Properties& properties) const {
  Control::Describe(properties);
  const Field* field = set_.FindField(field_);
  properties.emplace_back("text", Text());
  properties.emplace_back("readOnly", read_only_);
  properties.emplace_back("set", set_.Name());
  if (field != nullptr && field->Type() == FieldType::String && field->Size() > 0) {
    properties.emplace_back("maxLength", int64_t{field->Size()});
  }
}

void DBEdit::UserSet(std::string_view text) {
  Field* field = set_.FindField(field_);
  if (field == nullptr || !set_.Active()) throw UserError("A tabela não está aberta.");
  if (read_only_ || !set_.CanModify()) throw UserError("Este campo é só de leitura.");
  Value value = Typed(*field, text, kDecimals);
  if (!set_.Editing()) set_.Edit();
  const std::string before = Text();
  field->Set(std::move(value));
  Touch();
  if (OnChange && Text() != before) OnChange();
}

// --- DBRadioGroup.

int DBRadioGroup::ItemIndex() const {
  const Field* field = set_.FindField(field_);
  if (field == nullptr || !set_.Active()) return -1;
  const auto found = std::find(values_.begin(), values_.end(), field->AsString());
  return found == values_.end() ? -1 : static_cast<int>(found - values_.begin());
}

void DBRadioGroup::Describe(Properties& properties) const {
  Control::Describe(properties);
  const int index = ItemIndex();
  properties.emplace_back("items", items_);
  properties.emplace_back("index", int64_t{index});
  properties.emplace_back("text", index < 0 ? std::string() : items_[static_cast<std::size_t>(index)]);
  properties.emplace_back("set", set_.Name());
}

void DBRadioGroup::UserSet(std::string_view text) {
  const auto item = std::find(items_.begin(), items_.end(), text);
  const int64_t index = item != items_.end() ? item - items_.begin() : ParseInteger(Trim(text));
  if (index < 0 || index >= static_cast<int64_t>(values_.size())) {
    throw UserError("\"" + std::string(text) + "\" não está na lista.");
  }
  Field* field = set_.FindField(field_);
  if (field == nullptr || !set_.CanModify()) throw UserError("Este campo é só de leitura.");
  if (!set_.Editing()) set_.Edit();
  field->Set(Value(values_[static_cast<std::size_t>(index)]));
  Touch();
  if (OnChange) OnChange();
}

// --- Chart.

int Chart::PageCount() const {
  const int64_t points = set_.Active() ? const_cast<DataSet&>(set_).DisplayCount() : 0;
  return static_cast<int>(std::max<int64_t>(1, (points + page_size_ - 1) / page_size_));
}

void Chart::SetSeriesTitle(std::string_view field, std::string title) {
  for (ChartSeries& one : series_) {
    if (SameText(one.field, field)) one.title = std::move(title);
  }
  Touch();
}

void Chart::SetPage(int page) {
  page_ = std::clamp(page, 0, PageCount() - 1);
  Touch();
}

void Chart::DescribeFixed(Properties& properties) const {
  properties.emplace_back("set", set_.Name());
  properties.emplace_back("label", label_field_);
  properties.emplace_back("pageSize", int64_t{page_size_});
}

void Chart::Describe(Properties& properties) const {
  Control::Describe(properties);
  std::vector<std::string> series;
  for (const ChartSeries& one : series_) {
    series.push_back(Join({one.field, one.title, one.line ? "line" : "bar"}, "\t"));
  }
  properties.emplace_back("series", std::move(series));
  properties.emplace_back("page", int64_t{page_});
  properties.emplace_back("pages", int64_t{PageCount()});
}

}  // namespace orv
