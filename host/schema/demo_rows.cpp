#include "host/schema/demo_rows.h"

#include <span>
#include <vector>

#include "host/data/statement.h"
#include "toolkit/error.h"

namespace orv::demo {

struct Rows::Table {
  std::vector<const char*> columns;
  BulkInsert insert;
  std::vector<Value> values;
};

Rows::Rows(Attachment& db, std::string emp_pat) : db_(db), emp_pat_(std::move(emp_pat)) {}

Rows::~Rows() = default;

void Rows::Add(const char* table, std::initializer_list<Field> fields) {
  auto found = tables_.find(table);
  if (found == tables_.end()) {
    std::vector<const char*> columns;
    std::vector<std::string> names;
    for (const Field& field : fields) columns.push_back(field.column), names.emplace_back(field.column);
    auto made = std::make_unique<Table>(Table{std::move(columns), BulkInsert(db_, table + emp_pat_, names),
                                              std::vector<Value>(fields.size())});
    found = tables_.emplace(table, std::move(made)).first;
  }
  Table& t = *found->second;
  ORV_ASSERT(t.columns.size() == fields.size());
  std::size_t i = 0;
  for (const Field& field : fields) {
    ORV_ASSERT(std::string_view(t.columns[i]) == field.column);
    t.values[i++] = field.value;
  }
  t.insert.Add(std::span<const Value>(t.values));
}

void Rows::Close() {
  for (auto& [name, table] : tables_) table->insert.Finish();
  tables_.clear();
}

}  // namespace orv::demo
