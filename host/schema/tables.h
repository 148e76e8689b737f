// The company's database, declared: tables, columns, keys and indexes. The DDL is made from these.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orv {

// Money is NUMERIC(18,4). Double is for quantities, unit prices, costs, percentages and rates.
enum class ColumnType { Text, Money, Double, Date, Integer, SmallInt, Timestamp, Bytes };

struct ColumnDef {
  std::string name;
  ColumnType type = ColumnType::Text;
  int width = 0;        // of texts, in characters
  std::string initial;  // SQL literal that stands in where a row names no value; empty for none
};

struct IndexDef {
  std::vector<std::string> columns;
};

// A table under its logical name. Tables of a company exist once for each, with the company's suffix after
// the name; global ones exist once.
struct TableDef {
  std::string name;
  std::vector<ColumnDef> columns;
  std::vector<std::string> key;  // empty where rows have no identity that the database could enforce
  std::vector<IndexDef> indexes;

  // Null when there is no such column.
  const ColumnDef* Find(std::string_view column) const;
};

struct ColumnRef {
  std::string table;
  std::string column;
  // It can hold another company's number as well: that of a cheque which pays this one's titles, or that it
  // handed over.
  bool foreign = false;
};

// A kind of number: a sequence for each company, named after the first column, numbers all its columns. A
// number is free where none of them holds it.
struct SequenceDef {
  std::string table;
  std::string column;
  std::vector<ColumnRef> others;

  std::vector<ColumnRef> Columns() const;
};

// All tables that each company has of its own.
const std::vector<TableDef>& CompanyTables();

// The tables that stand above the companies: EMPRESA and the host's own.
const std::vector<TableDef>& GlobalTables();

// By logical name, without regard to case, among both. Null when there is none.
const TableDef* FindTable(std::string_view name);

const std::vector<SequenceDef>& Sequences();
// The kind of number that a column holds, without regard to case; one of its own where none is declared.
SequenceDef SequenceOf(std::string_view table, std::string_view column);

// "SQ_CONTACOR_LANCAMENTO_001" for ("CONTACOR", "LANCAMENTO", "_001").
std::string SequenceName(std::string_view table, std::string_view column, std::string_view emp_pat);

// The name of the table's index number `index` (from 0) in the company with this suffix ("" for a global
// table).
std::string IndexName(const TableDef& table, std::string_view emp_pat, std::size_t index);

// CREATE TABLE with its key, without the further indexes.
std::string CreateTableSql(const TableDef& table, std::string_view emp_pat);

// CREATE INDEX for each further index.
std::vector<std::string> CreateIndexSql(const TableDef& table, std::string_view emp_pat);

}  // namespace orv
