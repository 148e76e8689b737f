// Rows with a cursor: what working sets, queries and tables have in common, and what grids and bound controls
// see of them.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/error.h"
#include "toolkit/value.h"

namespace orv {

class DataSet;

enum class FieldType : uint8_t { String, Integer, Float, Currency, Date, DateTime };

constexpr ValueKind KindOf(FieldType type) {
  switch (type) {
    case FieldType::String:
      return ValueKind::Text;
    case FieldType::Integer:
      return ValueKind::Integer;
    case FieldType::Float:
      return ValueKind::Float;
    case FieldType::Currency:
      return ValueKind::Currency;
    case FieldType::Date:
      return ValueKind::Date;
    case FieldType::DateTime:
      return ValueKind::DateTime;
  }
  return ValueKind::Null;
}

// A column of a data set and, through it, the value of the current row.
//
// Setting a value needs the edit or insert state, cuts a text to the field's size in characters, converts to
// the field's type (ConversionError when that can't be) and fires `OnChange`.
class Field {
 public:
  // A fixed field of `owner`, in the order of declaration.
  Field(DataSet& owner, std::string name, FieldType type, int size = 0);
  Field(const Field&) = delete;
  Field& operator=(const Field&) = delete;

  const std::string& Name() const { return name_; }
  FieldType Type() const { return type_; }
  int Size() const { return size_; }
  int Index() const { return index_; }

  // The value in the current row (the one in edit as it stands); null when there is no row.
  const Value& Get() const;
  bool IsNull() const { return Get().IsNull(); }
  std::string AsString() const { return Get().AsString(); }
  int64_t AsInteger() const { return Get().AsInteger(); }
  double AsFloat() const { return Get().AsFloat(); }
  Currency AsCurrency() const { return Get().AsCurrency(); }
  Date AsDate() const { return Get().AsDate(); }

  // True for a value that needs no conversion. A text of more bytes than the size has characters may need
  // one.
  bool Holds(const Value& value) const {
    return value.IsNull() ||
           (value.Kind() == KindOf(type_) &&
            (!value.IsText() || size_ <= 0 || value.Text().size() <= static_cast<std::size_t>(size_)));
  }
  // The value as this field would hold it: of its type and cut to its size. Raises ConversionError.
  Value Convert(Value value) const;
  void Set(Value value);
  void Clear() { Set(Value()); }
  Field& operator=(Value value) {
    Set(std::move(value));
    return *this;
  }

  // After a value was set by the program or by a user. `Sender` is this field.
  std::function<void()> OnChange;

 private:
  friend class DataSet;
  DataSet& owner_;
  std::string name_;
  FieldType type_;
  int size_;
  int index_;
};

// What happens to a set: one handler of its owner's, and any number of listeners that come and go.
class Event {
 public:
  using Handler = std::function<void()>;
  Event() = default;
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  // The owner's handler, nullptr for none.
  Event& operator=(Handler handler) {
    own_ = std::move(handler);
    return *this;
  }
  // A listener, called behind those that were there, until what is given back is let go.
  [[nodiscard]] std::shared_ptr<const void> Listen(Handler handler);
  explicit operator bool() const { return own_ != nullptr || !listeners_.empty(); }
  // A handler may put another in its place, or end the set's life.
  void operator()() const;

 private:
  Handler own_;
  std::vector<std::weak_ptr<const Handler>> listeners_;
};

enum class DataSetState : uint8_t { Inactive, Browse, Edit, Insert };

// The neutral name of a state: "inactive", "browse", "edit", "insert".
std::string_view StateName(DataSetState state);

class DataSet {
 public:
  explicit DataSet(std::string name) : name_(std::move(name)) {}
  virtual ~DataSet();
  DataSet(const DataSet&) = delete;
  DataSet& operator=(const DataSet&) = delete;

  const std::string& Name() const { return name_; }

  // --- Fields.
  const std::vector<Field*>& Fields() const { return fields_; }
  // Names ignore case. Raises UserError for a name that isn't there.
  Field& FieldByName(std::string_view name);
  Field* FindField(std::string_view name);
  const Field* FindField(std::string_view name) const;
  // The fields of "A;B". Raises UserError for a name that isn't there.
  std::vector<const Field*> FieldList(std::string_view names) const;
  // Short for FieldByName.
  Field& operator[](std::string_view name) { return FieldByName(name); }

  // --- State.
  bool Active() const { return state_ != DataSetState::Inactive; }
  DataSetState State() const { return state_; }
  bool Editing() const { return state_ == DataSetState::Edit || state_ == DataSetState::Insert; }
  virtual void Open() = 0;
  virtual void Close() = 0;

  // --- Cursor. Moving posts a row in edit; an inserted row that nobody touched is dropped. Fires scroll
  // events.
  void First();
  void Last();
  void Next() { MoveBy(1); }
  void Prior() { MoveBy(-1); }
  // The number of rows really moved.
  int64_t MoveBy(int64_t distance);
  virtual bool Eof() const { return eof_; }
  bool Bof() const { return bof_; }
  virtual bool IsEmpty() const { return RecordCount() == 0; }
  // 1 for the first row as ordered and filtered; 0 without rows. In the insert state the place of the new
  // row.
  virtual int64_t RecNo() const = 0;
  void SetRecNo(int64_t number);
  // Rows as filtered; the row in insertion isn't counted.
  virtual int64_t RecordCount() const = 0;
  // Goes to the first row whose fields, named "A;B", equal the values. Names ignore case, texts don't.
  // False leaves the cursor where it stood.
  virtual bool Locate(std::string_view fields, std::span<const Value> values) = 0;
  bool Locate(std::string_view fields, const Value& value) { return Locate(fields, std::span(&value, 1)); }
  bool Locate(std::string_view fields, std::initializer_list<Value> values) {
    return Locate(fields, std::span(values.begin(), values.size()));
  }

  // --- Changes. A set that can't be changed raises UserError.
  virtual bool CanModify() const = 0;
  // A new row at the end, or before the current one. Posts a row in edit first.
  void Append();
  void Insert();
  // No effect when editing already. Without rows it appends.
  void Edit();
  // Raises what BeforePost raises and stays in edit. Outside edit it raises UserError.
  void Post();
  // Posts a row in edit or in insertion that was touched; drops an untouched insertion.
  void PostIfEditing();
  // Drops the changes of the row in edit.
  void Cancel();
  // Removes the current row and stands on the next one.
  void Delete();

  // --- Display. Calls come in pairs and nest; while disabled nothing bound to the set repaints.
  void DisableControls() { ++disabled_; }
  void EnableControls();
  bool ControlsDisabled() const { return disabled_ > 0; }
  // Counts every change that a display of the set could show: rows, values, order, filter.
  uint64_t Version() const { return version_; }
  // Counts the changes of the rows themselves: which they are, their stored values, their order. Neither the
  // cursor nor the row in edit changes it.
  uint64_t RowsVersion() const { return version_ - moves_; }

  // --- What a display reads without moving the cursor.
  // Cell of a row, 0 for the first shown, in the range [0, DisplayCount()). The row in edit as it stands.
  virtual Value Cell(int64_t row, const Field& field) = 0;
  // Rows that a display shows: as filtered, with the row in insertion.
  virtual int64_t DisplayCount() = 0;
  // The display row that is current, -1 without rows.
  virtual int64_t DisplayRow() = 0;
  // Tells that rows [from, from + count) are about to be read with `Cell`.
  virtual void Prepare(int64_t from, int64_t count);
  // Hands on these fields' values of each row in turn, as they are stored, without a row in insertion. The
  // set doesn't change meanwhile, and what is handed on lasts for the call.
  using EachRow = std::function<void(std::span<const Value* const>)>;
  virtual void Walk(std::span<const Field* const> fields, const EachRow& each);

  // A free number for the owner's use.
  int Tag = 0;

  // --- Events, in the order in which they fire.
  Event AfterOpen, AfterClose;
  Event BeforeInsert, OnNewRecord, AfterInsert;
  Event BeforeEdit, AfterEdit;
  Event BeforePost, AfterPost;
  Event BeforeCancel, AfterCancel;
  Event BeforeDelete, AfterDelete;
  Event BeforeScroll, AfterScroll;

 protected:
  friend class Field;

  // What a kind of data set does under the shared sequence of states and events.
  // Moves the cursor by up to `distance` rows and gives the rows really moved.
  virtual int64_t DoMove(int64_t distance) = 0;
  virtual void DoFirst() = 0;
  virtual void DoLast() = 0;
  virtual void DoSetRecNo(int64_t number) = 0;
  // Starts a new row (at the end or before the current one), starts an edit, keeps or drops it.
  virtual void DoInsert(bool append) = 0;
  virtual void DoEdit() = 0;
  virtual void DoPost() = 0;
  virtual void DoCancel() = 0;
  // True when no row followed the one removed.
  virtual bool DoDelete() = 0;
  virtual const Value& CurrentValue(int field) const = 0;
  virtual void SetCurrentValue(int field, Value value) = 0;

  // Run-time fields are owned by the set; fixed ones are members of the subclass.
  Field& AddField(std::string name, FieldType type, int size);
  void ClearRunTimeFields();

  void Changed() { ++version_; }
  // The cursor, the state or the row in edit is another.
  void Moved() { ++version_, ++moves_; }
  void SetState(DataSetState state);
  void SetEnds(bool bof, bool eof) { bof_ = bof, eof_ = eof; }
  // Fires AfterScroll after the cursor reached another row.
  void Scrolled();
  void CheckActive() const;
  void CheckModify() const;

  // Posts or drops the row in edit before the cursor moves.
  void CheckBrowse();
  // The same, and fires BeforeScroll.
  void LeaveRow();

 private:
  void BeginInsert(bool append);
  // Drops the row in edit without events.
  void DropEdit();

  std::string name_;
  std::vector<Field*> fields_;
  std::vector<std::unique_ptr<Field>> run_time_fields_;
  DataSetState state_ = DataSetState::Inactive;
  bool bof_ = true;
  bool eof_ = true;
  bool touched_ = false;
  bool preparing_ = false;
  int disabled_ = 0;
  uint64_t version_ = 0;
  uint64_t moves_ = 0;
};

// Keeps the sets' displays still for a block.
class ControlsHold {
 public:
  explicit ControlsHold(std::vector<DataSet*> sets) : sets_(std::move(sets)) {
    for (DataSet* set : sets_) set->DisableControls();
  }
  explicit ControlsHold(DataSet& set) : ControlsHold(std::vector{&set}) {}
  ~ControlsHold() {
    for (DataSet* set : sets_) set->EnableControls();
  }
  ControlsHold(const ControlsHold&) = delete;
  ControlsHold& operator=(const ControlsHold&) = delete;

 private:
  std::vector<DataSet*> sets_;
};

}  // namespace orv
