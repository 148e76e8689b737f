// Rows of a working set made up field by field, and appended in the bulk manner.
#pragma once

#include <span>
#include <vector>

#include "toolkit/memory_dataset.h"

namespace orv {

// The fields are those that the set has when the writer is made.
class RowWriter {
 public:
  explicit RowWriter(MemoryDataSet& set) : set_(set), row_(set.Fields().size()) {}

  // A value of the row in the making, of any kind that the field can hold. The fields are looked up by name
  // once for all rows.
  Value& operator[](const Field& field);
  // Moves a statement's columns to these fields, one each.
  void Take(std::span<const Field* const> fields, std::span<Value> columns);
  // Makes each value as its field holds it, for who looks at them before the row is appended. Raises
  // ConversionError.
  void Fit() { set_.FitRow(row_); }
  // Appends the row, and begins another of nulls. Raises ConversionError.
  void Append() { set_.AppendRow(row_); }

 private:
  MemoryDataSet& set_;
  std::vector<Value> row_;
};

}  // namespace orv
