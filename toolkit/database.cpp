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

std::string Quote(std::string_view text) {
  std::string literal = "'";
  literal += ReplaceAll(CleanUtf8(text), "'", "''");
  literal += "'";
  return literal;
}

}  // namespace orv
