#include "toolkit/row_writer.h"

namespace orv {

Value& RowWriter::operator[](const Field& field) {
  const auto place = static_cast<std::size_t>(field.Index());
  ORV_ASSERT(place < row_.size() && set_.Fields()[place] == &field);
  return row_[place];
}

void RowWriter::Take(std::span<const Field* const> fields, std::span<Value> columns) {
  ORV_ASSERT(fields.size() == columns.size());
  for (std::size_t i = 0; i < fields.size(); ++i) (*this)[*fields[i]] = std::move(columns[i]);
}

}  // namespace orv
