// A statement made of lines, run on the session's connection.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "toolkit/database.h"
#include "toolkit/memory_dataset.h"

namespace orv {

// The text of a statement, line by line.
class SqlLines {
 public:
  void Clear() { lines_.clear(); }
  void Add(std::string line) { lines_.push_back(std::move(line)); }
  void SetText(std::string text) { lines_.assign(1, std::move(text)); }
  std::string Text() const;

 private:
  std::vector<std::string> lines_;
};

// Opening fetches the whole result, so that a walk over it may write into the tables it reads. Read only.
class TOrvQuery : public MemoryDataSet {
 public:
  explicit TOrvQuery(TOrvDatabase& database, std::string name = "")
      : MemoryDataSet(std::move(name)), database_(database) {}

  SqlLines SQL;
  // Runs the statement; the fields are its columns. An open query is run again. Raises DatabaseError.
  void Open() override;
  // Runs a statement without a result; the number of rows that it touched.
  int64_t ExecSQL();
  bool CanModify() const override { return false; }

 private:
  TOrvDatabase& database_;
};

// The type of field that holds a column's values.
FieldType FieldTypeOf(ValueKind kind);

}  // namespace orv
