// The connection that the layers below the screens work on: statements are text, values come back as rows.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/error.h"
#include "toolkit/value.h"

namespace orv {

// A column of a result: its alias as the statement gives it, what its values are, and for texts the length in
// characters.
struct Column {
  std::string name;
  ValueKind kind = ValueKind::Null;
  int size = 0;
};

// A statement that the database refused. `what()` is a sentence for the user; `Detail()` is the engine's own
// text with the statement, for the log; `Code()` the engine's error code.
class DatabaseError : public UserError {
 public:
  enum class Kind { Other, Conflict, Constraint, Connection, ReadOnly, DiskFull, Cancelled, Limit };
  DatabaseError(Kind kind, long code, const std::string& message, std::string detail)
      : UserError(message), kind_(kind), code_(code), detail_(std::move(detail)) {}
  Kind Why() const { return kind_; }
  long Code() const { return code_; }
  const std::string& Detail() const { return detail_; }

 private:
  Kind kind_;
  long code_;
  std::string detail_;
};

// Takes the rows of a statement as they come.
class RowSink {
 public:
  virtual ~RowSink() = default;
  // Once, before the first row.
  virtual void Columns(const std::vector<Column>& columns) = 0;
  // A row; the sink may move the values out. False stops the fetch.
  virtual bool Row(std::span<Value> values) = 0;
};

// Gives the next row by filling its values; false when there are no more.
using RowSource = std::function<bool(std::span<Value> row)>;

class TOrvDatabase {
 public:
  virtual ~TOrvDatabase() = default;

  // Runs a SELECT to its end and hands on every row. Raises DatabaseError.
  virtual void Fetch(std::string_view sql, RowSink& sink) = 0;

  // Runs any other statement; the number of rows that it touched.
  virtual int64_t Execute(std::string_view sql) = 0;

  // Inserts rows into a table, by its physical name, with a value for each column: what an INSERT of each row
  // would write, for the many rows that would take their time one by one. Raises DatabaseError at the row
  // that is refused; those before it stand until the caller's rollback.
  virtual void InsertRows(const std::string& table, const std::vector<std::string>& columns,
                          const RowSource& next);

  // Ends an action: everything written since the last commit stays.
  virtual void CommitRetaining() = 0;

  // The physical name of a logical table of the company on which the host stands ("CONTACOR" to
  // "CONTACOR_001").
  virtual std::string LocalName(std::string_view table) const = 0;

  // All rows of a SELECT. For results known to be small.
  std::vector<std::vector<Value>> Rows(std::string_view sql);
  // First column of the first row, null when there is none.
  Value Scalar(std::string_view sql);
};

// A quoted SQL literal.
std::string Quote(std::string_view text);

}  // namespace orv
