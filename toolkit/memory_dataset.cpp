#include "toolkit/memory_dataset.h"

#include <algorithm>
#include <utility>

#include "toolkit/text.h"

namespace orv {
namespace {

const Value kNull;

}  // namespace

MemoryDataSet::~MemoryDataSet() = default;

// --- Rows.

void MemoryDataSet::OpenRows() {
  std::vector<int> order;
  for (const Field* field : FieldList(index_names_)) order.push_back(field->Index());
  parsed_.clear();
  auto filter = filtered_ ? Parsed(filter_text_) : nullptr;
  DropRows();
  order_ = std::move(order);
  active_filter_ = std::move(filter);
  SetState(DataSetState::Browse);
  SetEnds(true, true);
}

void MemoryDataSet::Opened() {
  AfterOpen();
  if (Active() && !IsEmpty()) Scrolled();
}

void MemoryDataSet::DropRows() {
  store_.Reset(Fields().size());
  full_view_.Clear();
  filtered_view_.Clear();
  unplaced_.clear();
  indexes_.clear();
  searched_ = {};
  buffer_.clear();
  current_ = kNoRow;
  position_ = -1;
  Changed();
}

void MemoryDataSet::Close() {
  if (!Active()) return;
  if (Editing()) Cancel();
  DropRows();
  order_.clear();
  parsed_.clear();
  active_filter_ = nullptr;
  SetState(DataSetState::Inactive);
  SetEnds(true, true);
  AfterClose();
}

bool MemoryDataSet::Before(RowId a, RowId b) const {
  const Value* x = store_.Cells(a);
  const Value* y = store_.Cells(b);
  for (const int column : order_) {
    const std::strong_ordering order = Compare(x[column], y[column]);
    if (order != 0) return order < 0;
  }
  return store_.Rank(a) < store_.Rank(b);
}

std::size_t MemoryDataSet::PositionIn(const RowSequence& view, RowId row) const {
  return view.LowerBound(row, [this](RowId a, RowId b) { return Before(a, b); });
}

void MemoryDataSet::Link(RowId row) {
  const std::size_t place = PositionIn(full_view_, row);
  full_view_.Insert(place, row);
  if (!active_filter_) {
    ChangedFrom(static_cast<int64_t>(place));
  } else if (Passes(row)) {
    const std::size_t shown = PositionIn(filtered_view_, row);
    filtered_view_.Insert(shown, row);
    ChangedFrom(static_cast<int64_t>(shown));
  }
}

void MemoryDataSet::PlaceRows() {
  std::vector<RowId> rows = std::exchange(unplaced_, {});
  // Few among many find their places one by one.
  if (rows.size() < full_view_.Size() / 16) {
    for (const RowId row : rows) Link(row);
    return;
  }
  SortRows(rows);
  std::vector<RowId> all;
  all.reserve(full_view_.Size() + rows.size());
  RowSequence::Walk placed(full_view_);
  for (RowId row = placed.Next(); row != kNoRow; row = placed.Next()) all.push_back(row);
  const auto middle = static_cast<std::ptrdiff_t>(all.size());
  all.insert(all.end(), rows.begin(), rows.end());
  std::inplace_merge(all.begin(), all.begin() + middle, all.end(),
                     [this](RowId a, RowId b) { return Before(a, b); });
  Show(std::move(all));
}

void MemoryDataSet::Show(std::vector<RowId> rows) {
  ChangedFrom(0);
  full_view_.Assign(rows);
  if (!active_filter_) return;
  std::erase_if(rows, [this](RowId row) { return !Passes(row); });
  filtered_view_.Assign(rows);
}

void MemoryDataSet::FitRow(std::span<Value> values) const {
  const auto& fields = Fields();
  ORV_ASSERT(fields.size() == values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!fields[i]->Holds(values[i])) values[i] = fields[i]->Convert(std::move(values[i]));
  }
}

void MemoryDataSet::AppendRow(std::span<Value> values) {
  FitRow(values);
  TakeRow(values);
}

void MemoryDataSet::TakeRow(std::span<Value> values) {
  ORV_ASSERT(State() == DataSetState::Browse && values.size() == store_.Columns());
  const RowId row = store_.Add();
  std::move(values.begin(), values.end(), store_.Cells(row));
  for (const auto& index : indexes_) index->Add(row);
  if (order_.empty()) {
    Link(row);
  } else {
    unplaced_.push_back(row);
  }
  if (current_ == kNoRow && Passes(row)) {
    StandAt(row);
    SetEnds(true, false);
  } else if (current_ != kNoRow && !order_.empty()) {
    StandAt(current_);
  }
  Changed();
}

// --- Cursor.

void MemoryDataSet::StandOn(int64_t position) {
  const auto size = static_cast<int64_t>(View().Size());
  position_ = size == 0 ? -1 : std::clamp<int64_t>(position, 0, size - 1);
  current_ = position_ < 0 ? kNoRow : View().At(static_cast<std::size_t>(position_));
}

void MemoryDataSet::StandAt(RowId row) {
  current_ = row;
  position_ = kUnplaced;
}

int64_t MemoryDataSet::Position() const {
  if (position_ == kUnplaced) position_ = static_cast<int64_t>(PositionIn(View(), current_));
  return position_;
}

int64_t MemoryDataSet::RecNo() const {
  return State() == DataSetState::Insert ? insert_at_ + 1 : Position() + 1;
}

int64_t MemoryDataSet::RecordCount() const { return static_cast<int64_t>(View().Size()); }

int64_t MemoryDataSet::DoMove(int64_t distance) {
  if (current_ == kNoRow) return 0;
  const int64_t before = Position();
  StandOn(before + distance);
  return position_ - before;
}

void MemoryDataSet::DoFirst() { StandOn(0); }
void MemoryDataSet::DoLast() { StandOn(RecordCount() - 1); }
void MemoryDataSet::DoSetRecNo(int64_t number) { StandOn(number - 1); }

bool MemoryDataSet::Locate(std::string_view names, std::span<const Value> values) {
  CheckBrowse();
  const auto fields = FieldList(names);
  if (fields.empty() || fields.size() != values.size())
    throw UserError("A pesquisa não tem um valor por campo.");
  std::vector<int> columns;
  std::vector<Value> wanted;
  columns.reserve(fields.size());
  wanted.reserve(fields.size());
  try {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      // Numbers are compared as they are: 1.5 isn't in a field of whole numbers.
      const bool text = fields[i]->Type() == FieldType::String;
      columns.push_back(fields[i]->Index());
      wanted.push_back(text == values[i].IsText() ? values[i] : values[i].As(KindOf(fields[i]->Type())));
    }
  } catch (const ConversionError&) {
    return false;  // what isn't of the field's kind stands in no row
  }
  const RowId found = FirstMatch(IndexOn(columns), std::move(wanted));
  if (found == kNoRow) return false;
  BeforeScroll();
  CheckBrowse();
  if (found >= store_.Bound() || !store_.IsLive(found) || !Passes(found)) return false;
  StandAt(found);
  SetEnds(false, false);
  Scrolled();
  return true;
}

// Where a value stands in many rows, one of them is soon met from the front of the view: both ways are gone
// at once, and the shorter one ends the search. A program that looks for the next unticked row again and
// again goes on from where the last search came to.
RowId MemoryDataSet::FirstMatch(const RowIndex& index, std::vector<Value> values) {
  if (searched_.index != &index || searched_.wanted != values) searched_ = {&index, std::move(values), 0};
  const std::vector<Value>& wanted = searched_.wanted;
  const RowSequence& rows = View();
  RowSequence::Walk view(rows, static_cast<std::size_t>(searched_.rows));
  RowId first = kNoRow;
  for (RowId row = index.First(wanted); row != kNoRow; row = index.Next(row, wanted)) {
    if (Passes(row) && (first == kNoRow || Before(row, first))) first = row;
    const RowId shown = view.Next();
    if (shown == kNoRow) return kNoRow;
    if (index.Matches(shown, wanted)) return shown;
    ++searched_.rows;
  }
  return first;
}

RowIndex& MemoryDataSet::IndexOn(const std::vector<int>& columns) {
  for (const auto& index : indexes_) {
    if (index->Columns() == columns) return *index;
  }
  indexes_.push_back(std::make_unique<RowIndex>(store_, columns));
  return *indexes_.back();
}

// --- Changes.

const Value& MemoryDataSet::CurrentValue(int field) const {
  if (Editing()) return buffer_[static_cast<std::size_t>(field)];
  return current_ == kNoRow ? kNull : store_.Cells(current_)[field];
}

void MemoryDataSet::SetCurrentValue(int field, Value value) {
  buffer_[static_cast<std::size_t>(field)] = std::move(value);
}

void MemoryDataSet::DoInsert(bool append) {
  buffer_.assign(store_.Columns(), Value());
  insert_at_ = append || current_ == kNoRow ? RecordCount() : Position();
}

void MemoryDataSet::DoEdit() {
  const Value* cells = store_.Cells(current_);
  buffer_.assign(cells, cells + store_.Columns());
}

void MemoryDataSet::DoPost() {
  if (State() == DataSetState::Edit) {
    StoreEdit();
    return;
  }
  const int64_t place = insert_at_;
  RowId row = kNoRow;
  if (place >= RecordCount() || !order_.empty()) {
    row = store_.Add();
  } else {
    // A row put before another stands there in the order of adding too.
    const std::size_t at = PositionIn(full_view_, current_);
    row = store_.AddBetween(at > 0 ? full_view_.At(at - 1) : kNoRow, current_);
  }
  std::move(buffer_.begin(), buffer_.end(), store_.Cells(row));
  for (const auto& index : indexes_) index->Add(row);
  Link(row);
  // A row that doesn't pass the filter leaves the cursor on the one that has its place.
  if (Passes(row)) {
    StandAt(row);
  } else {
    StandOn(place);
  }
}

// Moves the row in edit to its cells, and touches only what its changes concern.
void MemoryDataSet::StoreEdit() {
  const RowId row = current_;
  Value* cells = store_.Cells(row);
  const auto differs = [&](int column) {
    return !(cells[column] == buffer_[static_cast<std::size_t>(column)]);
  };
  const bool moves = std::any_of(order_.begin(), order_.end(), differs);
  const bool stays = !active_filter_ || active_filter_->Accepts(buffer_.data());
  std::vector<RowIndex*> touched;
  for (const auto& index : indexes_) {
    if (std::any_of(index->Columns().begin(), index->Columns().end(), differs))
      touched.push_back(index.get());
  }
  const int64_t place = Position();
  ChangedFrom(place);
  if (active_filter_ && (moves || !stays)) filtered_view_.Erase(static_cast<std::size_t>(place));
  if (moves) full_view_.Erase(PositionIn(full_view_, row));
  for (RowIndex* index : touched) index->Remove(row);
  std::move(buffer_.begin(), buffer_.end(), cells);
  for (RowIndex* index : touched) index->Add(row);
  if (moves) full_view_.Insert(PositionIn(full_view_, row), row);
  if (active_filter_ && moves && stays) filtered_view_.Insert(PositionIn(filtered_view_, row), row);
  // A row that no longer passes the filter leaves the cursor on the next one.
  if (!stays) {
    StandOn(place);
  } else if (moves) {
    StandAt(row);
  }
  ChangedFrom(Position());
}

void MemoryDataSet::DoCancel() {
  buffer_.clear();
  StandOn(Position());
}

bool MemoryDataSet::DoDelete() {
  const int64_t place = Position();
  ChangedFrom(place);
  if (active_filter_) {
    filtered_view_.Erase(static_cast<std::size_t>(place));
    full_view_.Erase(PositionIn(full_view_, current_));
  } else {
    full_view_.Erase(static_cast<std::size_t>(place));
  }
  for (const auto& index : indexes_) index->Remove(current_);
  store_.Remove(current_);
  StandOn(place);
  return place >= RecordCount();
}

// --- Order and filter.

void MemoryDataSet::SortRows(std::vector<RowId>& rows) const {
  if (order_.empty()) {
    const auto by_rank = [&](RowId a, RowId b) { return store_.Rank(a) < store_.Rank(b); };
    if (!std::is_sorted(rows.begin(), rows.end(), by_rank)) std::sort(rows.begin(), rows.end(), by_rank);
    return;
  }
  // Many sets are filled in the order they are shown in.
  const auto before = [&](RowId a, RowId b) { return Before(a, b); };
  if (std::is_sorted(rows.begin(), rows.end(), before)) return;
  struct Keyed {
    uint64_t prefix;
    RowId row;
  };
  std::vector<Keyed> keyed;
  keyed.reserve(rows.size());
  for (const RowId row : rows) keyed.push_back({SortPrefix(store_.Cells(row)[order_[0]]), row});
  std::sort(keyed.begin(), keyed.end(), [&](const Keyed& a, const Keyed& b) {
    return a.prefix != b.prefix ? a.prefix < b.prefix : Before(a.row, b.row);
  });
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = keyed[i].row;
}

void MemoryDataSet::SetIndexFieldNames(std::string_view names) {
  if (!Active()) {
    // Fields that aren't laid down yet are looked for when the set opens.
    if (!Fields().empty()) FieldList(names);
    index_names_ = names;
    return;
  }
  CheckBrowse();
  std::vector<int> order;
  for (const Field* field : FieldList(names)) order.push_back(field->Index());
  index_names_ = names;
  if (order == order_) return;
  order_ = std::move(order);
  unplaced_.clear();
  std::vector<RowId> rows;
  rows.reserve(store_.Live());
  for (RowId row = 0; row < store_.Bound(); ++row) {
    if (store_.IsLive(row)) rows.push_back(row);
  }
  SortRows(rows);
  Show(std::move(rows));
  if (current_ != kNoRow) StandAt(current_);
  Changed();
}

std::shared_ptr<const Filter> MemoryDataSet::Parsed(std::string_view text) {
  constexpr std::size_t kKept = 64;
  const auto found = parsed_.find(std::string(text));
  if (found != parsed_.end()) return found->second;
  auto filter = Filter::Parse(*this, text);
  if (parsed_.size() >= kKept) parsed_.clear();
  parsed_.emplace(text, filter);
  return filter;
}

void MemoryDataSet::SetFilter(std::string_view text) {
  if (filtered_ && Active()) {
    CheckBrowse();
    auto filter = Parsed(text);
    filter_text_ = text;
    Refilter(std::move(filter));
  } else {
    filter_text_ = text;
  }
}

void MemoryDataSet::SetFiltered(bool filtered) {
  if (filtered == filtered_) return;
  if (Active()) {
    CheckBrowse();
    auto filter = filtered ? Parsed(filter_text_) : nullptr;
    filtered_ = filtered;
    Refilter(std::move(filter));
  } else {
    filtered_ = filtered;
  }
}

void MemoryDataSet::Refilter(std::shared_ptr<const Filter> filter) {
  if (!unplaced_.empty()) PlaceRows();
  active_filter_ = std::move(filter);
  filtered_view_.Clear();
  ChangedFrom(0);
  if (active_filter_) {
    std::vector<RowId> rows;
    const auto& equalities = active_filter_->Equalities();
    if (!equalities.empty()) {
      std::vector<int> columns;
      std::vector<Value> values;
      for (const FilterEquality& equality : equalities) {
        columns.push_back(equality.field);
        values.push_back(equality.value);
      }
      const RowIndex& index = IndexOn(columns);
      for (RowId row = index.First(values); row != kNoRow; row = index.Next(row, values)) {
        if (Passes(row)) rows.push_back(row);
      }
      SortRows(rows);
    } else {
      RowSequence::Walk all(full_view_);
      for (RowId row = all.Next(); row != kNoRow; row = all.Next()) {
        if (Passes(row)) rows.push_back(row);
      }
    }
    filtered_view_.Assign(rows);
  }
  const RowId row = current_;
  const bool stays = row != kNoRow && Passes(row);
  if (stays) {
    StandAt(row);
  } else {
    StandOn(0);
  }
  SetEnds(IsEmpty(), IsEmpty());
  Changed();
  if (!stays) Scrolled();
}

// --- Display.

int64_t MemoryDataSet::DisplayCount() { return RecordCount() + (State() == DataSetState::Insert ? 1 : 0); }

int64_t MemoryDataSet::DisplayRow() { return RecNo() - 1; }

Value MemoryDataSet::Cell(int64_t row, const Field& field) {
  if (Editing() && row == DisplayRow()) return buffer_[static_cast<std::size_t>(field.Index())];
  if (State() == DataSetState::Insert && row > insert_at_) --row;
  if (row < 0 || row >= RecordCount()) return {};
  return store_.Cells(View().At(static_cast<std::size_t>(row)))[field.Index()];
}

void MemoryDataSet::Walk(std::span<const Field* const> fields, const EachRow& each) {
  std::vector<const Value*> cells(fields.size());
  RowSequence::Walk rows(View());
  for (RowId row = rows.Next(); row != kNoRow; row = rows.Next()) {
    const Value* const all = store_.Cells(row);
    for (std::size_t at = 0; at < fields.size(); ++at) cells[at] = &all[fields[at]->Index()];
    each(cells);
  }
}

}  // namespace orv
