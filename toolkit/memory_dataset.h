// Data sets whose rows are in memory: working sets and the results of queries.
#pragma once

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "toolkit/dataset.h"
#include "toolkit/filter.h"
#include "toolkit/row_store.h"

namespace orv {

class MemoryDataSet : public DataSet {
 public:
  using DataSet::DataSet;
  ~MemoryDataSet() override;

  void Close() override;
  int64_t RecNo() const override;
  int64_t RecordCount() const override;
  using DataSet::Locate;
  bool Locate(std::string_view fields, std::span<const Value> values) override;

  Value Cell(int64_t row, const Field& field) override;
  int64_t DisplayCount() override;
  int64_t DisplayRow() override;
  void Walk(std::span<const Field* const> fields, const EachRow& each) override;

  // --- Order. Rows stand ascending by these fields, and rows that agree in them as they were added; "" is
  // the order in which they were added. The cursor stays on its row. Raises UserError for an unknown field.
  void SetIndexFieldNames(std::string_view names);
  const std::string& IndexFieldNames() const { return index_names_; }

  // --- Filter. A text that doesn't parse raises UserError when it is set or switched on, and changes
  // nothing. A row under the cursor that falls out leaves the cursor on the first row.
  void SetFilter(std::string_view text);
  const std::string& FilterText() const { return filter_text_; }
  void SetFiltered(bool filtered);
  bool Filtered() const { return filtered_; }

  // Appends a row without events, behind the others, each value as its field holds it; for filling a set in
  // bulk. The values are moved out and must be as many as the fields. The cursor stays. Raises
  // ConversionError, and then nothing is appended.
  void AppendRow(std::span<Value> values);
  // Makes each of a row's values as its field holds it. Raises ConversionError.
  void FitRow(std::span<Value> values) const;
  // The current row whatever the order: while none is removed, how many were added before it. kNoRow without
  // rows.
  RowId CurrentRow() const { return current_; }

 protected:
  // Makes the set ready for rows of its present fields, without events.
  void OpenRows();
  // Fires AfterOpen, and AfterScroll where there are rows.
  void Opened();
  // Appends a row as it stands.
  void TakeRow(std::span<Value> values);
  // Drops all rows, without events.
  void DropRows();

  int64_t DoMove(int64_t distance) override;
  void DoFirst() override;
  void DoLast() override;
  void DoSetRecNo(int64_t number) override;
  void DoInsert(bool append) override;
  void DoEdit() override;
  void DoPost() override;
  void DoCancel() override;
  bool DoDelete() override;
  const Value& CurrentValue(int field) const override;
  void SetCurrentValue(int field, Value value) override;

 private:
  bool Before(RowId a, RowId b) const;
  bool Passes(RowId row) const { return !active_filter_ || active_filter_->Accepts(store_.Cells(row)); }
  const RowSequence& View() const {
    if (!unplaced_.empty()) const_cast<MemoryDataSet*>(this)->PlaceRows();
    return active_filter_ ? filtered_view_ : full_view_;
  }
  std::size_t PositionIn(const RowSequence& view, RowId row) const;
  void Link(RowId row);
  // Puts the rows appended in bulk into their places.
  void PlaceRows();
  // Makes the views of all rows, in order.
  void Show(std::vector<RowId> rows);
  void StoreEdit();
  void StandOn(int64_t position);
  void StandAt(RowId row);
  // The cursor's place in the view, -1 without rows.
  int64_t Position() const;
  void SortRows(std::vector<RowId>& rows) const;
  void Refilter(std::shared_ptr<const Filter> filter);
  std::shared_ptr<const Filter> Parsed(std::string_view text);
  RowIndex& IndexOn(const std::vector<int>& columns);
  RowId FirstMatch(const RowIndex& index, std::vector<Value> values);
  // The view is another one from this position on.
  void ChangedFrom(int64_t position) { searched_.rows = std::clamp<int64_t>(position, 0, searched_.rows); }

  RowStore store_;
  RowSequence full_view_, filtered_view_;
  // Rows appended in bulk to a set in order, which stand in no view until somebody looks.
  std::vector<RowId> unplaced_;
  std::vector<int> order_;
  std::string index_names_;
  std::string filter_text_;
  bool filtered_ = false;
  std::shared_ptr<const Filter> active_filter_;
  std::unordered_map<std::string, std::shared_ptr<const Filter>> parsed_;
  std::vector<std::unique_ptr<RowIndex>> indexes_;
  // What the latest Locate looked for, and the rows at the front of the view that are known to be others.
  struct {
    const RowIndex* index = nullptr;
    std::vector<Value> wanted;
    int64_t rows = 0;
  } searched_;
  // The cursor: a row and its place in the view, which is looked for when somebody asks. The row in edit is a
  // copy until it is posted.
  static constexpr int64_t kUnplaced = -2;
  RowId current_ = kNoRow;
  mutable int64_t position_ = -1;
  std::vector<Value> buffer_;
  int64_t insert_at_ = 0;
};

}  // namespace orv
