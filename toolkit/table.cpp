#include "toolkit/table.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "toolkit/query.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr int64_t kBlock = 200;
// Pages kept for displays.
constexpr std::size_t kPages = 50;
constexpr const char* kChanged = "Outro usuário alterou este registro. Consulte-o de novo antes de gravar.";

const Value kNull;

class Gather : public RowSink {
 public:
  void Columns(const std::vector<Column>& found) override { columns = found; }
  bool Row(std::span<Value> values) override {
    rows.emplace_back(std::make_move_iterator(values.begin()), std::make_move_iterator(values.end()));
    return true;
  }
  std::vector<Column> columns;
  std::vector<std::vector<Value>> rows;
};

}  // namespace

// --- Opening.

void TOrvTable::Open() {
  if (Active()) return;
  physical_ = local_ ? database_.LocalName(table_) : table_;
  ClearRunTimeFields();
  Gather gather;
  database_.Fetch("SELECT * FROM " + physical_ + " ROWS 0", gather);
  for (const Column& column : gather.columns) AddField(column.name, FieldTypeOf(column.kind), column.size);
  MakeOrder();
  Forget();
  StandOn({}, -1, std::nullopt);
  SetState(DataSetState::Browse);
  // Whether there are rows shows when the first one is asked for.
  SetEnds(true, false);
  AfterOpen();
  if (AfterScroll && Active() && HasRow()) Scrolled();
}

void TOrvTable::MakeOrder() {
  key_fields_ = FieldList(key_);
  order_ = FieldList(order_names_);
  for (const Field* field : key_fields_) {
    if (std::find(order_.begin(), order_.end(), field) == order_.end()) order_.push_back(field);
  }
}

void TOrvTable::Close() {
  if (!Active()) return;
  if (Editing()) Cancel();
  Abandon();
  AfterClose();
}

void TOrvTable::Abandon() {
  stale_ = false;
  buffer_.clear();
  Forget();
  block_.clear();
  at_ = -1;
  SetState(DataSetState::Inactive);
  SetEnds(true, true);
}

void TOrvTable::Forget() {
  pages_.clear();
  count_.reset();
  Changed();
}

void TOrvTable::SetIndexFieldNames(std::string_view columns) {
  if (!Active()) {
    order_names_ = columns;
    return;
  }
  CheckBrowse();
  FieldList(columns);
  order_names_ = columns;
  MakeOrder();
  Forget();
  if (at_ >= 0) StandOn({Current()}, 0, std::nullopt);
}

void TOrvTable::Refresh() {
  CheckBrowse();
  Forget();
  if (at_ >= 0) {
    Reread();
  } else {
    StandOn({}, -1, std::nullopt);
  }
  Scrolled();
}

void TOrvTable::Reread() {
  Forget();
  const Row row = Current();
  Rows found = Select(KeyCondition(row), false, 0, 1);
  if (!found.empty()) {
    StandOn(std::move(found), 0, std::nullopt);
    return;
  }
  StandOn({row}, 0, std::nullopt);
  if (!Advance(false) && !Advance(true)) StandOn({}, -1, std::nullopt);
}

// --- Statements.

std::string TOrvTable::Literal(const Value& value, const Field& field) const {
  if (value.IsNull()) return "NULL";
  switch (field.Type()) {
    case FieldType::String:
      return Quote(value.Text());
    case FieldType::Date:
      return Quote(value.AsDate().Sql());
    case FieldType::DateTime:
      return Quote(value.AsDateTime().Neutral());
    default:
      return value.Neutral();
  }
}

std::string TOrvTable::Equals(const Field& field, const Value& value) const {
  if (value.IsNull()) {
    // The zero date is read as the empty one.
    if (field.Type() == FieldType::Date)
      return "(" + field.Name() + " IS NULL OR " + field.Name() + " = " + Quote(Date().Sql()) + ")";
    return field.Name() + " IS NULL";
  }
  const std::string literal = Literal(value, field);
  switch (field.Type()) {
    case FieldType::Float:
      // What a decimal text makes of a float may differ in the last bit.
      if (value.AsFloat() == 0) break;
      return "ABS(" + field.Name() + " - (" + literal + ")) <= ABS(" + literal + ") * 1E-14";
    case FieldType::DateTime:
      // The database has fractions of a second.
      return field.Name() + " BETWEEN " + literal + " AND " + Quote(value.AsDateTime().Neutral() + ".9999");
    default:
      break;
  }
  return field.Name() + " = " + literal;
}

std::string TOrvTable::AsRead(const Row& row) const {
  std::vector<std::string> parts;
  for (const Field* field : Fields())
    parts.push_back(Equals(*field, row[static_cast<std::size_t>(field->Index())]));
  return Join(parts, " AND ");
}

std::string TOrvTable::KeyCondition(const Row& row) const {
  std::vector<std::string> parts;
  for (const Field* field : key_fields_)
    parts.push_back(Equals(*field, row[static_cast<std::size_t>(field->Index())]));
  return Join(parts, " AND ");
}

std::string TOrvTable::Where(const std::string& condition) const {
  std::vector<std::string> parts;
  if (!condition_.empty()) parts.push_back("(" + condition_ + ")");
  if (!condition.empty()) parts.push_back("(" + condition + ")");
  return parts.empty() ? "" : " WHERE " + Join(parts, " AND ");
}

TOrvTable::Rows TOrvTable::Select(const std::string& condition, bool backwards, int64_t from,
                                  int64_t count) const {
  std::string sql = "SELECT * FROM " + physical_ + Where(condition);
  std::vector<std::string> order;
  for (const Field* field : order_) order.push_back(field->Name() + (Down(backwards) ? " DESC" : ""));
  if (!order.empty()) sql += " ORDER BY " + Join(order, ", ");
  sql += " ROWS " + std::to_string(from + 1) + " TO " + std::to_string(from + count);
  Gather gather;
  database_.Fetch(sql, gather);
  if (backwards) std::reverse(gather.rows.begin(), gather.rows.end());
  return std::move(gather.rows);
}

// Nulls stand before everything else in the order of the columns.
std::string TOrvTable::BeyondValue(const Field& field, const Value& value, bool backwards) const {
  const bool down = Down(backwards);
  if (value.IsNull()) return down ? "1 = 0" : field.Name() + " IS NOT NULL";
  if (!down) return field.Name() + " > " + Literal(value, field);
  const bool key = std::find(key_fields_.begin(), key_fields_.end(), &field) != key_fields_.end();
  const std::string less = field.Name() + " < " + Literal(value, field);
  return key ? less : "(" + less + " OR " + field.Name() + " IS NULL)";
}

std::optional<std::string> TOrvTable::Beyond(const Row& row, bool backwards) const {
  if (key_fields_.empty()) return std::nullopt;
  std::vector<std::string> ways;
  std::string equal;
  for (const Field* field : order_) {
    const Value& value = row[static_cast<std::size_t>(field->Index())];
    ways.push_back("(" + equal + BeyondValue(*field, value, backwards) + ")");
    equal += Equals(*field, value) + " AND ";
  }
  if (ways.size() == 1) return ways[0];
  const std::string any = "(" + Join(ways, " OR ") + ")";
  // The bound on the first column alone is what an index serves.
  const Field* first = order_[0];
  const Value& value = row[static_cast<std::size_t>(first->Index())];
  const bool key = std::find(key_fields_.begin(), key_fields_.end(), first) != key_fields_.end();
  const bool down = Down(backwards);
  if (value.IsNull() || (down && !key)) return any;
  return first->Name() + (down ? " <= " : " >= ") + Literal(value, *first) + " AND " + any;
}

// --- Cursor.

bool TOrvTable::HasRow() const {
  if (at_ >= 0) return true;
  if (!Active() || count_ == 0) return false;
  // The first question for a row reads the first block.
  auto& self = const_cast<TOrvTable&>(*this);
  self.block_ = Reach("", false, kBlock);
  self.block_place_ = 0;
  self.at_ = self.block_.empty() ? -1 : 0;
  if (self.block_.empty()) self.count_ = 0;
  return at_ >= 0;
}

void TOrvTable::StandOn(Rows block, int64_t at, std::optional<int64_t> place) {
  block_ = std::move(block);
  at_ = block_.empty() ? -1 : at;
  block_place_ = place;
  streak_ = 0;
}

// Reads the block behind the present one, or the one before it; false at the end.
bool TOrvTable::Advance(bool backwards) {
  const Row& edge = backwards ? block_.front() : block_.back();
  std::optional<int64_t> place;
  Rows next;
  const int64_t count = kBlock << std::min(std::exchange(streak_, streak_ + 1), 5);
  if (!key_fields_.empty()) {
    next = Neighbours(edge, backwards, count);
    if (block_place_) {
      place = backwards ? *block_place_ - static_cast<int64_t>(next.size())
                        : *block_place_ + static_cast<int64_t>(block_.size());
    }
  } else {
    const int64_t first = RecNo() - 1 - at_;
    const int64_t from =
        backwards ? std::max<int64_t>(0, first - kBlock) : first + static_cast<int64_t>(block_.size());
    next = Select("", false, from, backwards ? first - from : kBlock);
    place = from;
  }
  if (next.empty()) return false;
  const int64_t at = backwards ? static_cast<int64_t>(next.size()) - 1 : 0;
  const int streak = streak_;
  StandOn(std::move(next), at, place);
  streak_ = streak;
  return true;
}

// An index on the first column of the order alone serves neither the whole order nor the condition for it: so
// the rest of the row's group comes first, and then no more groups than the rows asked for reach.
TOrvTable::Rows TOrvTable::Neighbours(const Row& row, bool backwards, int64_t count) const {
  if (order_.size() <= 1) return Select(*Beyond(row, backwards), backwards, 0, count);
  const Field& first = *order_[0];
  const Value& value = row[static_cast<std::size_t>(first.Index())];
  Rows rows = Select("(" + Equals(first, value) + ") AND " + *Beyond(row, backwards), backwards, 0, count);
  if (!rows.empty()) return rows;
  return Reach(BeyondValue(first, value, backwards), backwards, count);
}

TOrvTable::Rows TOrvTable::Reach(const std::string& condition, bool backwards, int64_t count) const {
  if (order_.size() <= 1) return Select(condition, backwards, 0, count);
  const Field& first = *order_[0];
  const bool down = Down(backwards);
  const std::string at = std::to_string(count);
  Gather edge;
  database_.Fetch("SELECT " + first.Name() + " FROM " + physical_ + Where(condition) + " ORDER BY " +
                      first.Name() + (down ? " DESC" : "") + " ROWS " + at + " TO " + at,
                  edge);
  std::vector<std::string> parts;
  if (!condition.empty()) parts.push_back("(" + condition + ")");
  if (!edge.rows.empty()) {
    const Value& value = edge.rows[0][0];
    const std::string null = first.Name() + " IS NULL";
    if (value.IsNull()) {
      if (!down) parts.push_back(null);
    } else if (down) {
      parts.push_back(first.Name() + " >= " + Literal(value, first));
    } else {
      const std::string bound = first.Name() + " <= " + Literal(value, first);
      parts.push_back(condition.empty() ? "(" + bound + " OR " + null + ")" : bound);
    }
  }
  return Select(Join(parts, " AND "), backwards, 0, count);
}

int64_t TOrvTable::DoMove(int64_t distance) {
  if (!HasRow()) return 0;
  int64_t moved = 0;
  while (moved != distance) {
    const int64_t left = distance - moved;
    const int64_t last = static_cast<int64_t>(block_.size()) - 1;
    const int64_t step = left > 0 ? std::min(left, last - at_) : std::max(left, -at_);
    at_ += step;
    moved += step;
    if (moved == distance) break;
    if (!Advance(left < 0)) break;
    moved += left > 0 ? 1 : -1;
  }
  return moved;
}

void TOrvTable::DoFirst() {
  StandOn({}, -1, std::nullopt);
  // Somebody may have put rows into an empty table.
  if (count_ == 0) Forget();
  HasRow();
}

void TOrvTable::DoLast() {
  Rows rows = Reach("", true, kBlock);
  std::optional<int64_t> place;
  if (count_) place = *count_ - static_cast<int64_t>(rows.size());
  const int64_t at = static_cast<int64_t>(rows.size()) - 1;
  StandOn(std::move(rows), at, place);
}

void TOrvTable::DoSetRecNo(int64_t number) {
  const int64_t place = std::clamp<int64_t>(number - 1, 0, std::max<int64_t>(0, RecordCount() - 1));
  const int64_t page = place / kBlock;
  const Rows& rows = Page(page);
  // Rows may have gone since they were counted.
  if (rows.empty()) return DoLast();
  StandOn(rows, std::min(place % kBlock, static_cast<int64_t>(rows.size()) - 1), page * kBlock);
}

bool TOrvTable::Locate(std::string_view names, std::span<const Value> values) {
  CheckBrowse();
  const auto fields = FieldList(names);
  if (fields.empty() || fields.size() != values.size())
    throw UserError("A pesquisa não tem um valor por campo.");
  std::vector<std::string> parts;
  bool here = HasRow();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    Value wanted;
    try {
      wanted = values[i].As(KindOf(fields[i]->Type()));
    } catch (const ConversionError&) {
      return false;
    }
    here = here && Current()[static_cast<std::size_t>(fields[i]->Index())] == wanted;
    parts.push_back(Equals(*fields[i], wanted));
  }
  // The key of the row on which the cursor stands needs no statement.
  const bool by_key = !key_fields_.empty() && fields == key_fields_;
  if (here && by_key) return true;
  Rows found = Select(Join(parts, " AND "), false, 0, 1);
  if (found.empty()) return false;
  BeforeScroll();
  StandOn(std::move(found), 0, std::nullopt);
  SetEnds(false, false);
  Scrolled();
  return true;
}

int64_t TOrvTable::RecNo() const {
  if (State() == DataSetState::Insert) return RecordCount() + 1;
  if (!HasRow()) return 0;
  if (!block_place_) {
    const auto before = Beyond(block_.front(), true);
    if (before) {
      block_place_ = database_.Scalar("SELECT COUNT(*) FROM " + physical_ + Where(*before)).AsInteger();
    } else {
      // Without a key the place is found by looking.
      const Rows all = Select("", false, 0, RecordCount());
      const auto found = std::find(all.begin(), all.end(), block_.front());
      block_place_ = found == all.end() ? 0 : found - all.begin();
    }
  }
  return *block_place_ + at_ + 1;
}

int64_t TOrvTable::RecordCount() const {
  if (!Active()) return 0;
  if (!count_) count_ = database_.Scalar("SELECT COUNT(*) FROM " + physical_ + Where("")).AsInteger();
  return *count_;
}

// --- Changes.

const Value& TOrvTable::CurrentValue(int field) const {
  if (Editing()) return buffer_[static_cast<std::size_t>(field)];
  return HasRow() ? Current()[static_cast<std::size_t>(field)] : kNull;
}

void TOrvTable::SetCurrentValue(int field, Value value) {
  buffer_[static_cast<std::size_t>(field)] = std::move(value);
}

void TOrvTable::DoInsert(bool) { buffer_.assign(Fields().size(), Value()); }
void TOrvTable::DoEdit() {
  buffer_ = Current();
  stale_ = false;
}

void TOrvTable::DoCancel() {
  // The user sees what the other one made of the row.
  if (std::exchange(stale_, false) && at_ >= 0) Reread();
  buffer_.clear();
}

// Exactly one row is to be touched, the one that was read.
void TOrvTable::Write(const std::string& sql) {
  if (database_.Execute(sql) == 1) return;
  stale_ = Editing();
  if (!stale_) Reread();
  throw UserError(kChanged);
}

bool TOrvTable::WriteRow(bool even_unchanged) {
  const bool insert = State() == DataSetState::Insert;
  std::vector<std::string> names, values;
  for (const Field* field : Fields()) {
    const auto i = static_cast<std::size_t>(field->Index());
    if (insert ? buffer_[i].IsNull() : buffer_[i] == Current()[i]) continue;
    names.push_back(field->Name());
    values.push_back(Literal(buffer_[i], *field));
  }
  if (insert) {
    if (names.empty()) throw UserError("A linha nova está vazia.");
    database_.Execute("INSERT INTO " + physical_ + " (" + Join(names, ", ") + ") VALUES (" +
                      Join(values, ", ") + ")");
  } else if (names.empty() && !even_unchanged) {
    return false;
  } else {
    std::vector<std::string> assignments;
    if (names.empty()) assignments.push_back(Fields()[0]->Name() + " = " + Fields()[0]->Name());
    for (std::size_t i = 0; i < names.size(); ++i) assignments.push_back(names[i] + " = " + values[i]);
    Write("UPDATE " + physical_ + " SET " + Join(assignments, ", ") + " WHERE " + AsRead(Current()));
  }
  return true;
}

void TOrvTable::DoPost() {
  if (!WriteRow(false)) return;
  // The row as the database has it now, defaults included.
  Rows stored = Select(KeyCondition(buffer_), false, 0, 1);
  if (stored.empty()) stored.push_back(std::move(buffer_));
  buffer_.clear();
  StandOn(std::move(stored), 0, std::nullopt);
  Forget();
}

void TOrvTable::Store() {
  if (!Editing()) throw UserError("A tabela \"" + Name() + "\" não está em edição.");
  WriteRow(true);
}

void TOrvTable::Remove() {
  CheckBrowse();
  if (!HasRow()) throw UserError("A tabela \"" + Name() + "\" está vazia.");
  Write("DELETE FROM " + physical_ + " WHERE " + AsRead(Current()));
}

bool TOrvTable::DoDelete() {
  Write("DELETE FROM " + physical_ + " WHERE " + AsRead(Current()));
  Forget();
  // What stands behind the removed row, or else before it.
  StandOn({Current()}, 0, std::nullopt);
  if (Advance(false)) return false;
  if (!Advance(true)) StandOn({}, -1, std::nullopt);
  return true;
}

// --- Display.

TOrvTable::Rows& TOrvTable::Page(int64_t page) {
  const auto found = pages_.find(page);
  if (found != pages_.end()) return found->second;
  if (pages_.size() >= kPages) pages_.clear();
  Rows rows;
  const auto before = pages_.find(page - 1);
  if (page == 0) {
    rows = Reach("", false, kBlock);
  } else if (!key_fields_.empty() && before != pages_.end() && !before->second.empty()) {
    // The page behind one that is there is reached by its last row, whatever stands before it.
    for (const Row* last = &before->second.back(); std::ssize(rows) < kBlock; last = &rows.back()) {
      Rows next = Neighbours(*last, false, kBlock - std::ssize(rows));
      if (next.empty()) break;
      std::move(next.begin(), next.end(), std::back_inserter(rows));
    }
  } else {
    rows = Select("", false, page * kBlock, kBlock);
  }
  return pages_[page] = std::move(rows);
}

Value TOrvTable::Cell(int64_t row, const Field& field) {
  const auto column = static_cast<std::size_t>(field.Index());
  if (Editing() && row == DisplayRow()) return buffer_[column];
  if (row < 0) return {};
  const Rows& page = Page(row / kBlock);
  const auto at = static_cast<std::size_t>(row % kBlock);
  return at < page.size() ? page[at][column] : Value();
}

int64_t TOrvTable::DisplayCount() { return RecordCount() + (State() == DataSetState::Insert ? 1 : 0); }
int64_t TOrvTable::DisplayRow() { return RecNo() - 1; }

void TOrvTable::Prepare(int64_t from, int64_t count) {
  for (int64_t page = from / kBlock; page * kBlock < from + count; ++page) Page(page);
}

}  // namespace orv
