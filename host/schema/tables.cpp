#include "host/schema/tables.h"

#include <utility>

#include "host/schema/columns.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {

namespace {

// Longest identifier that the database takes.
constexpr std::size_t kMaxName = 31;

std::string Checked(std::string name) {
  ORV_ASSERT(name.size() <= kMaxName);
  return name;
}

std::string TypeSql(const ColumnDef& column) {
  switch (column.type) {
    case ColumnType::Text:
      return "VARCHAR(" + std::to_string(column.width) + ")";
    case ColumnType::Money:
      return "NUMERIC(18,4)";
    case ColumnType::Double:
      return "DOUBLE PRECISION";
    case ColumnType::Date:
      return "DATE";
    case ColumnType::Integer:
      return "INTEGER";
    case ColumnType::SmallInt:
      return "SMALLINT";
    case ColumnType::Timestamp:
      return "TIMESTAMP";
    case ColumnType::Bytes:
      return "BLOB SUB_TYPE 0";
  }
  return {};
}

std::string PhysicalName(const TableDef& table, std::string_view emp_pat) {
  return Checked(table.name + std::string(emp_pat));
}

bool Contains(const std::vector<std::string>& names, std::string_view name) {
  for (const std::string& n : names)
    if (n == name) return true;
  return false;
}

}  // namespace

const ColumnDef* TableDef::Find(std::string_view column) const {
  for (const ColumnDef& c : columns)
    if (SameText(c.name, column)) return &c;
  return nullptr;
}

const std::vector<TableDef>& CompanyTables() {
  static const std::vector<TableDef> tables = [] {
    std::vector<TableDef> all;
    for (auto part :
         {schema_parts::MasterTables, schema_parts::LedgerTables, schema_parts::TitleTables,
          schema_parts::ReconciliationTables, schema_parts::TradeTables, schema_parts::ProductionTables})
      for (TableDef& table : part()) all.push_back(std::move(table));
    return all;
  }();
  return tables;
}

const std::vector<TableDef>& GlobalTables() {
  static const std::vector<TableDef> tables = schema_parts::HostTables();
  return tables;
}

const TableDef* FindTable(std::string_view name) {
  for (const std::vector<TableDef>* tables : {&CompanyTables(), &GlobalTables()})
    for (const TableDef& table : *tables)
      if (SameText(table.name, name)) return &table;
  return nullptr;
}

std::vector<ColumnRef> SequenceDef::Columns() const {
  std::vector<ColumnRef> all{{table, column, false}};
  all.insert(all.end(), others.begin(), others.end());
  return all;
}

const std::vector<SequenceDef>& Sequences() {
  static const std::vector<SequenceDef> sequences = {
      // Accounting stands under a movement's number as well as under a clearing's, and whoever deletes by the
      // one must not meet the other.
      {"CONTACOR",
       "LANCAMENTO",
       {{"CONTACOR", "LANC_CON", false},
        {"EXTRATO", "LANC_CON", false},
        {"CHEQUE_PRE", "CHAVE", true},
        {"CONTABIL", "LANCAMENTO", false},
        {"CENTRO_RATEIO", "LANCAMENTO", false},
        {"PAGTO1", "LANCAMENTO", true},
        {"RECEBERB", "LANCAMENTO", true}}},
      {"CONTACOR", "DOCTO", {}},
      {"EXTRATO", "LANCTO", {}},
      {"PAGTO", "NUM_AP", {}},
  };
  return sequences;
}

SequenceDef SequenceOf(std::string_view table, std::string_view column) {
  for (const SequenceDef& sequence : Sequences())
    for (const ColumnRef& held : sequence.Columns())
      if (SameText(held.table, table) && SameText(held.column, column)) return sequence;
  return {Upper(table), Upper(column), {}};
}

std::string SequenceName(std::string_view table, std::string_view column, std::string_view emp_pat) {
  std::string name = "SQ_";
  name.append(table).append("_").append(column).append(emp_pat);
  return Checked(std::move(name));
}

std::string IndexName(const TableDef& table, std::string_view emp_pat, std::size_t index) {
  return Checked("IX_" + PhysicalName(table, emp_pat) + "_" + std::to_string(index + 1));
}

std::string CreateTableSql(const TableDef& table, std::string_view emp_pat) {
  const std::string name = PhysicalName(table, emp_pat);
  std::string sql = "CREATE TABLE " + name + " (";
  bool first = true;
  for (const ColumnDef& column : table.columns) {
    if (!std::exchange(first, false)) sql += ", ";
    sql += Checked(column.name) + " " + TypeSql(column);
    if (!column.initial.empty()) sql += " DEFAULT " + column.initial;
    if (Contains(table.key, column.name)) sql += " NOT NULL";
  }
  if (!table.key.empty())
    sql += ", CONSTRAINT " + Checked("PK_" + name) + " PRIMARY KEY (" + Join(table.key, ", ") + ")";
  return sql + ")";
}

std::vector<std::string> CreateIndexSql(const TableDef& table, std::string_view emp_pat) {
  std::vector<std::string> statements;
  for (std::size_t i = 0; i < table.indexes.size(); ++i)
    statements.push_back("CREATE INDEX " + IndexName(table, emp_pat, i) + " ON " +
                         PhysicalName(table, emp_pat) + " (" + Join(table.indexes[i].columns, ", ") + ")");
  return statements;
}

}  // namespace orv
