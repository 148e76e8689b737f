// How the table declarations write a column: name and width, the rest is the kind's.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/schema/tables.h"

namespace orv::columns {

inline ColumnDef Text(std::string name, int width, std::string initial = {}) {
  return {std::move(name), ColumnType::Text, width, std::move(initial)};
}
// "S" or "N".
inline ColumnDef Flag(std::string name, std::string initial = "'N'") {
  return {std::move(name), ColumnType::Text, 1, std::move(initial)};
}
// Zero where nothing is written, so that an open amount is never null.
inline ColumnDef Money(std::string name) { return {std::move(name), ColumnType::Money, 0, "0"}; }
inline ColumnDef Double(std::string name) { return {std::move(name), ColumnType::Double, 0, "0"}; }
inline ColumnDef Day(std::string name) { return {std::move(name), ColumnType::Date, 0, {}}; }
inline ColumnDef Integer(std::string name, std::string initial = {}) {
  return {std::move(name), ColumnType::Integer, 0, std::move(initial)};
}
inline ColumnDef SmallInt(std::string name, std::string initial = "0") {
  return {std::move(name), ColumnType::SmallInt, 0, std::move(initial)};
}
inline ColumnDef Bytes(std::string name) { return {std::move(name), ColumnType::Bytes, 0, {}}; }
inline ColumnDef Moment(std::string name) {
  return {std::move(name), ColumnType::Timestamp, 0, "CURRENT_TIMESTAMP"};
}

// Columns that are compared with one another have one width.
inline ColumnDef Movement(std::string name) { return Text(std::move(name), 7); }
inline ColumnDef Account(std::string name) { return Text(std::move(name), 13); }
inline ColumnDef Bank(std::string name) { return Text(std::move(name), 3); }
inline ColumnDef Class(std::string name) { return Text(std::move(name), 6); }
inline ColumnDef History(std::string name) { return Text(std::move(name), 5); }
inline ColumnDef Entity(std::string name) { return Text(std::move(name), 5); }
inline ColumnDef Situation(std::string name, std::string initial = {}) {
  return Text(std::move(name), 2, std::move(initial));
}
inline ColumnDef LedgerAccount(std::string name) { return Text(std::move(name), 12); }
inline ColumnDef CostCentre(std::string name) { return Text(std::move(name), 4); }
inline ColumnDef Document(std::string name) { return Text(std::move(name), 15); }
inline ColumnDef Payable(std::string name) { return Text(std::move(name), 7); }
inline ColumnDef Receivable(std::string name) { return Text(std::move(name), 12); }
inline ColumnDef Order(std::string name) { return Text(std::move(name), 8); }
inline ColumnDef Sale(std::string name) { return Text(std::move(name), 10); }
inline ColumnDef CurrencyCode(std::string name) { return Text(std::move(name), 2); }
// Up to 20 slots of 3 characters, a number of days each.
inline ColumnDef Terms(std::string name) { return Text(std::move(name), 60); }

}  // namespace orv::columns

namespace orv::schema_parts {

std::vector<TableDef> LedgerTables();
std::vector<TableDef> MasterTables();
std::vector<TableDef> TitleTables();
std::vector<TableDef> ReconciliationTables();
std::vector<TableDef> TradeTables();
std::vector<TableDef> ProductionTables();
std::vector<TableDef> HostTables();

}  // namespace orv::schema_parts
