#include "toolkit/database.h"

#include "toolkit/text.h"

namespace orv {
namespace {

class Gather : public RowSink {
 public:
  void Columns(const std::vector<Column>&) override {}
  bool Row(std::span<Value> values) override {
    rows.emplace_back(std::make_move_iterator(values.begin()), std::make_move_iterator(values.end()));
    return rows.size() < limit;
  }
  std::vector<std::vector<Value>> rows;
  std::size_t limit = SIZE_MAX;
};

}  // namespace

std::vector<std::vector<Value>> TOrvDatabase::Rows(std::string_view sql) {
  Gather gather;
  Fetch(sql, gather);
  return std::move(gather.rows);
}

Value TOrvDatabase::Scalar(std::string_view sql) {
  Gather gather;
  gather.limit = 1;
  Fetch(sql, gather);
  return gather.rows.empty() ? Value() : std::move(gather.rows[0][0]);
}

void TOrvDatabase::InsertRows(const std::string& table, const std::vector<std::string>& columns,
                              const RowSource& next) {
  const std::string begin = "INSERT INTO " + table + " (" + Join(columns, ", ") + ") VALUES (";
  for (std::vector<Value> row(columns.size()); next(row);) {
    std::vector<std::string> literals;
    for (const Value& value : row) {
      literals.push_back(value.IsNull()   ? "NULL"
                         : value.IsText() ? Quote(value.Text())
                         : value.Kind() == ValueKind::Date || value.Kind() == ValueKind::DateTime
                             ? Quote(value.Neutral())
                             : value.Neutral());
    }
    Execute(begin + Join(literals, ", ") + ")");
  }
}

std::string Quote(std::string_view text) {
  std::string literal = "'";
  literal += ReplaceAll(CleanUtf8(text), "'", "''");
  literal += "'";
  return literal;
}

}  // namespace orv
