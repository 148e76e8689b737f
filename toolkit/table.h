// A table of the database, read as far as it is shown or walked.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/database.h"
#include "toolkit/dataset.h"

namespace orv {

// Opening reads the columns and no row. Rows come in blocks, by their place in the order or by the row
// before; rows are counted only when somebody asks. A row is changed and removed as it was read: when another
// user changed it meanwhile, UserError says so and nothing is written.
class TOrvTable : public DataSet {
 public:
  // `table` is the logical name; its physical name is asked for at each opening, unless it is global.
  TOrvTable(TOrvDatabase& database, std::string name, std::string table, bool local = true)
      : DataSet(std::move(name)), database_(database), table_(std::move(table)), local_(local) {}

  // The columns that tell one row from all others, "A;B"; before the table is opened.
  void SetKey(std::string_view columns) { key_ = columns; }
  // The order by which rows stand, "" for the key. The cursor stays on its row. Raises UserError for an
  // unknown column.
  void SetIndexFieldNames(std::string_view columns);
  // The last of that order stands first; before the table is opened.
  void SetDescending(bool descending) { descending_ = descending; }
  // A condition in SQL, "" for all rows; takes effect with the next opening.
  void SetFilterSql(std::string condition) { condition_ = std::move(condition); }

  void Open() override;
  void Close() override;
  // Closes without an event and without a statement, wherever one may not run.
  void Abandon();
  // Reads the rows anew and stays on the present one where it is still there.
  void Refresh();

  // Asks the database for the row's place when that isn't known.
  int64_t RecNo() const override;
  int64_t RecordCount() const override;
  // Write the row in edit, or remove the current one, and leave the set as it stands: when the transaction
  // fails afterwards, nothing typed is lost and the cursor is where it was. After the commit, Cancel and
  // Refresh show what is stored. A row that another user changed is refused even where nothing was typed.
  void Store();
  void Remove();
  using DataSet::Locate;
  bool Locate(std::string_view fields, std::span<const Value> values) override;
  bool IsEmpty() const override { return !HasRow(); }
  bool Eof() const override { return DataSet::Eof() || !HasRow(); }
  bool CanModify() const override { return !key_.empty(); }

  Value Cell(int64_t row, const Field& field) override;
  int64_t DisplayCount() override;
  int64_t DisplayRow() override;
  void Prepare(int64_t from, int64_t count) override;

 protected:
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
  using Row = std::vector<Value>;
  using Rows = std::vector<Row>;

  bool HasRow() const;
  const Row& Current() const { return block_[static_cast<std::size_t>(at_)]; }
  Rows Select(const std::string& condition, bool backwards, int64_t from, int64_t count) const;
  // A condition for the rows behind (or before) one in the order; nothing without a key.
  std::optional<std::string> Beyond(const Row& row, bool backwards) const;
  std::string BeyondValue(const Field& field, const Value& value, bool backwards) const;
  std::string Where(const std::string& condition) const;
  std::string KeyCondition(const Row& row) const;
  std::string Literal(const Value& value, const Field& field) const;
  std::string Equals(const Field& field, const Value& value) const;
  // The row exactly as it was read.
  std::string AsRead(const Row& row) const;
  bool Advance(bool backwards);
  // Whether a step in the table's order goes down in the columns'.
  bool Down(bool backwards) const { return backwards != descending_; }
  // The rows next to one in the order, some if there are any.
  Rows Neighbours(const Row& row, bool backwards, int64_t count) const;
  // The first rows in the order, or the last ones, among those of a condition on the order's first column.
  Rows Reach(const std::string& condition, bool backwards, int64_t count) const;
  void StandOn(Rows block, int64_t at, std::optional<int64_t> place);
  void Forget();
  Rows& Page(int64_t page);
  void MakeOrder();
  // Reads the present row anew, or goes to a neighbour where it is gone.
  void Reread();
  void Write(const std::string& sql);
  // Writes the row in edit; false when there was nothing to write.
  bool WriteRow(bool even_unchanged);

  TOrvDatabase& database_;
  std::string table_, physical_, key_, order_names_, condition_;
  bool local_, descending_ = false;
  std::vector<const Field*> key_fields_, order_;
  // Neighbouring rows around the cursor, and the place of the first of them in the order where it is known.
  Rows block_;
  // Blocks read one after the other in the same direction; they grow.
  int streak_ = 0;
  int64_t at_ = -1;
  mutable std::optional<int64_t> block_place_;
  mutable std::optional<int64_t> count_;
  // What displays read, by page.
  std::map<int64_t, Rows> pages_;
  Row buffer_;
  // The row in edit was refused, since it isn't as it was read.
  bool stale_ = false;
};

}  // namespace orv
