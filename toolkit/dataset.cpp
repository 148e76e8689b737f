#include "toolkit/dataset.h"

#include <algorithm>

#include "toolkit/scoped.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// Events whose handlers are running. Handlers that fire one another without end are told as such.
constexpr int kMostNested = 200;
thread_local int nested_events = 0;

}  // namespace

std::string_view StateName(DataSetState state) {
  switch (state) {
    case DataSetState::Inactive:
      return "inactive";
    case DataSetState::Browse:
      return "browse";
    case DataSetState::Edit:
      return "edit";
    case DataSetState::Insert:
      return "insert";
  }
  return "";
}

// --- Event.

std::shared_ptr<const void> Event::Listen(Handler handler) {
  auto kept = std::make_shared<const Handler>(std::move(handler));
  std::erase_if(listeners_, [](const auto& gone) { return gone.expired(); });
  listeners_.push_back(kept);
  return kept;
}

void Event::operator()() const {
  if (!*this) return;
  const ScopedValue nested(nested_events, nested_events + 1);
  ORV_ASSERT(nested_events <= kMostNested);
  const auto listeners = listeners_;
  if (const Handler own = own_) own();
  for (const auto& one : listeners) {
    if (const auto listener = one.lock()) (*listener)();
  }
}

// --- Field.

Field::Field(DataSet& owner, std::string name, FieldType type, int size)
    : owner_(owner),
      name_(std::move(name)),
      type_(type),
      size_(size),
      index_(static_cast<int>(owner.fields_.size())) {
  ORV_ASSERT(owner.FindField(name_) == nullptr);
  owner.fields_.push_back(this);
}

const Value& Field::Get() const { return owner_.CurrentValue(index_); }

Value Field::Convert(Value value) const {
  if (Holds(value)) return value;
  if (value.Kind() != KindOf(type_)) value = value.As(KindOf(type_));
  if (type_ == FieldType::String && size_ > 0 && value.Text().size() > static_cast<std::size_t>(size_))
    value = Value(std::string(CutChars(value.Text(), static_cast<std::size_t>(size_))));
  return value;
}

void Field::Set(Value value) {
  if (!owner_.Editing()) throw UserError("A tabela \"" + owner_.Name() + "\" não está em edição.");
  owner_.SetCurrentValue(index_, Convert(std::move(value)));
  if (!owner_.preparing_) owner_.touched_ = true;
  owner_.Moved();
  // By value: a handler may put another in its place, or drop its field.
  if (const auto change = OnChange) change();
}

// --- DataSet: fields.

DataSet::~DataSet() { ORV_ASSERT(disabled_ == 0); }

Field& DataSet::FieldByName(std::string_view name) {
  Field* field = FindField(name);
  if (field == nullptr)
    throw UserError("O campo \"" + std::string(name) + "\" não existe em \"" + name_ + "\".");
  return *field;
}

Field* DataSet::FindField(std::string_view name) {
  return const_cast<Field*>(std::as_const(*this).FindField(name));
}

const Field* DataSet::FindField(std::string_view name) const {
  for (const Field* field : fields_) {
    if (SameText(field->Name(), name)) return field;
  }
  return nullptr;
}

std::vector<const Field*> DataSet::FieldList(std::string_view names) const {
  std::vector<const Field*> list;
  list.reserve(1 + static_cast<std::size_t>(std::count(names.begin(), names.end(), ';')));
  // Every Locate comes by here: no copies of the names.
  while (!names.empty()) {
    const std::size_t end = std::min(names.find(';'), names.size());
    const std::string_view name = Trim(names.substr(0, end));
    names.remove_prefix(std::min(end + 1, names.size()));
    if (name.empty()) continue;
    const Field* field = FindField(name);
    if (field == nullptr)
      throw UserError("O campo \"" + std::string(name) + "\" não existe em \"" + name_ + "\".");
    list.push_back(field);
  }
  return list;
}

Field& DataSet::AddField(std::string name, FieldType type, int size) {
  run_time_fields_.push_back(std::make_unique<Field>(*this, std::move(name), type, size));
  return *run_time_fields_.back();
}

void DataSet::ClearRunTimeFields() {
  std::erase_if(fields_, [&](const Field* field) {
    return std::any_of(run_time_fields_.begin(), run_time_fields_.end(),
                       [&](const auto& owned) { return owned.get() == field; });
  });
  run_time_fields_.clear();
  for (std::size_t i = 0; i < fields_.size(); ++i) fields_[i]->index_ = static_cast<int>(i);
}

// --- State and cursor.

void DataSet::SetState(DataSetState state) {
  if (state == state_) return;
  state_ = state;
  Moved();
}

void DataSet::CheckActive() const {
  if (!Active()) throw UserError("A tabela \"" + name_ + "\" não está aberta.");
}

void DataSet::CheckModify() const {
  CheckActive();
  if (!CanModify()) throw UserError("A tabela \"" + name_ + "\" é só de leitura.");
}

void DataSet::CheckBrowse() {
  CheckActive();
  PostIfEditing();
  CheckActive();
}

void DataSet::LeaveRow() {
  CheckBrowse();
  BeforeScroll();
  // A handler may have gone on editing.
  CheckBrowse();
}

void DataSet::Scrolled() {
  Moved();
  AfterScroll();
}

void DataSet::First() {
  LeaveRow();
  DoFirst();
  SetEnds(true, IsEmpty());
  Scrolled();
}

void DataSet::Last() {
  LeaveRow();
  DoLast();
  SetEnds(IsEmpty(), true);
  Scrolled();
}

int64_t DataSet::MoveBy(int64_t distance) {
  CheckBrowse();
  if (distance == 0) return 0;
  LeaveRow();
  const int64_t moved = DoMove(distance);
  if (moved != 0) SetEnds(false, false);
  if (moved != distance) (distance > 0 ? eof_ : bof_) = true;
  if (moved != 0) Scrolled();
  return moved;
}

void DataSet::SetRecNo(int64_t number) {
  LeaveRow();
  DoSetRecNo(number);
  SetEnds(false, false);
  Scrolled();
}

// --- Changes.

void DataSet::BeginInsert(bool append) {
  CheckModify();
  CheckBrowse();
  BeforeInsert();
  LeaveRow();
  DoInsert(append);
  touched_ = false;
  SetEnds(false, append);
  SetState(DataSetState::Insert);
  try {
    // What the program presets isn't a person's entry: an untouched new row is dropped.
    const ScopedValue preparing(preparing_, true);
    OnNewRecord();
  } catch (...) {
    DropEdit();
    throw;
  }
  AfterInsert();
  Scrolled();
}

void DataSet::Append() { BeginInsert(true); }
void DataSet::Insert() { BeginInsert(false); }

void DataSet::Edit() {
  if (Editing()) return;
  CheckModify();
  if (IsEmpty()) {
    BeginInsert(true);
    return;
  }
  BeforeEdit();
  if (Editing()) return;
  DoEdit();
  touched_ = false;
  SetState(DataSetState::Edit);
  AfterEdit();
}

void DataSet::Post() {
  if (!Editing()) throw UserError("A tabela \"" + name_ + "\" não está em edição.");
  BeforePost();
  // A handler may have posted or cancelled the row itself.
  if (!Editing()) return;
  DoPost();
  SetState(DataSetState::Browse);
  SetEnds(IsEmpty(), IsEmpty());
  Changed();
  AfterPost();
}

void DataSet::PostIfEditing() {
  if (!Editing()) return;
  if (state_ == DataSetState::Insert && !touched_) {
    Cancel();
  } else {
    Post();
  }
}

void DataSet::DropEdit() {
  if (!Editing()) return;
  DoCancel();
  SetState(DataSetState::Browse);
  SetEnds(IsEmpty(), IsEmpty());
  Changed();
}

void DataSet::Cancel() {
  if (!Editing()) return;
  BeforeCancel();
  // The cursor goes back from the new row to the one before.
  const bool scrolls = state_ == DataSetState::Insert;
  if (scrolls) BeforeScroll();
  DropEdit();
  AfterCancel();
  if (scrolls) Scrolled();
}

void DataSet::Delete() {
  CheckModify();
  if (state_ == DataSetState::Insert) {
    Cancel();
    return;
  }
  if (IsEmpty()) throw UserError("A tabela \"" + name_ + "\" está vazia.");
  BeforeDelete();
  BeforeScroll();
  DropEdit();
  if (IsEmpty()) return;
  // Without a row behind it the cursor is on the last one, and a walk has come to its end.
  const bool was_last = DoDelete();
  SetEnds(IsEmpty(), was_last);
  Changed();
  AfterDelete();
  Scrolled();
}

void DataSet::EnableControls() {
  ORV_ASSERT(disabled_ > 0);
  --disabled_;
}

void DataSet::Prepare(int64_t, int64_t) {}

void DataSet::Walk(std::span<const Field* const> fields, const EachRow& each) {
  std::vector<Value> values(fields.size());
  std::vector<const Value*> cells;
  for (const Value& value : values) cells.push_back(&value);
  const int64_t inserted = state_ == DataSetState::Insert ? DisplayRow() : RecordCount();
  for (int64_t row = 0, count = RecordCount(); row < count; ++row) {
    for (std::size_t at = 0; at < fields.size(); ++at)
      values[at] = Cell(row < inserted ? row : row + 1, *fields[at]);
    each(cells);
  }
}

}  // namespace orv
