#include "host/schema/sharing.h"

#include <algorithm>

#include "host/schema/balances.h"

namespace orv {
namespace {

bool IsGlobal(std::string_view table) {
  for (const TableDef& global : GlobalTables())
    if (SameText(global.name, table)) return true;
  return false;
}

}  // namespace

Sharing::Sharing(TOrvDatabase& db) {
  for (const auto& row : db.Rows("SELECT EMP_PAT FROM EMPRESA ORDER BY 1"))
    companies_.emplace_back(Trim(row[0].AsString()));
  for (const auto& row : db.Rows("SELECT TABELA, EMP_PAT FROM COMPARTILHADA ORDER BY 1")) {
    const std::string table = Upper(Trim(row[0].AsString()));
    std::string owner(Trim(row[1].AsString()));
    if (owner.empty() && !companies_.empty()) owner = companies_.front();
    tables_.push_back(table);
    owners_.emplace(table, std::move(owner));
  }
  // Sums stand where the rows stand that they are of.
  for (const KeptSums& kept : AllKeptSums()) {
    owners_.erase(kept.sums);
    if (const auto owner = owners_.find(kept.table); owner != owners_.end())
      owners_.emplace(kept.sums, owner->second);
  }
}

std::string Sharing::SuffixOf(std::string_view table, std::string_view company) const {
  if (const auto owner = owners_.find(table); owner != owners_.end()) return owner->second;
  return IsGlobal(table) ? "" : std::string(company);
}

std::string Sharing::Physical(std::string_view table, std::string_view company) const {
  return std::string(table) + SuffixOf(table, company);
}

NumberPlace Sharing::NumbersOf(const SequenceDef& kind, std::string_view company) const {
  const std::vector<ColumnRef> columns = kind.Columns();
  const auto shared = std::find_if(columns.begin(), columns.end(),
                                   [&](const ColumnRef& column) { return Holds(column.table); });
  NumberPlace place{SuffixOf(shared == columns.end() ? kind.table : shared->table, company), {}};
  const auto add = [&](const std::string& who) {
    for (const ColumnRef& column : columns) {
      const std::string table = Physical(column.table, who);
      const bool known = std::any_of(place.columns.begin(), place.columns.end(), [&](const ColumnRef& one) {
        return one.table == table && one.column == column.column;
      });
      if (!known) place.columns.push_back({table, column.column, column.foreign});
    }
  };
  if (shared == columns.end())
    add(std::string(company));
  else
    for (const std::string& one : companies_) add(one);
  return place;
}

int64_t TopNumber(TOrvDatabase& db, const std::vector<ColumnRef>& columns, int digits) {
  const std::string width = std::to_string(digits);
  std::vector<std::string> tops;
  for (const ColumnRef& held : columns)
    tops.push_back("SELECT MAX(CAST(" + held.column + " AS BIGINT)) AS N FROM " + held.table + " WHERE " +
                   held.column + " SIMILAR TO '[0-9]{1," + width + "}' AND NOT (" + held.column +
                   " STARTING WITH '9' AND CHAR_LENGTH(" + held.column + ") = " + width + ")");
  return db.Scalar("SELECT MAX(N) FROM (" + Join(tops, " UNION ALL ") + ")").AsInteger();
}

}  // namespace orv
