#include "host/services/companies.h"

#include <algorithm>

#include "host/services/sql_text.h"
#include "toolkit/error.h"

namespace orv {
namespace {

// The contexts that the database allows a statement, less one for the union itself.
constexpr int kMaxContexts = 254;

}  // namespace

Companies::Companies(TOrvDatabase& db, std::function<std::string()> current)
    : db_(db), current_(std::move(current)), sharing_(db) {}

std::vector<std::string> Companies::Suffixes() const {
  std::vector<std::string> suffixes;
  for (const auto& row : db_.Rows("SELECT EMP_PAT FROM EMPRESA ORDER BY 1")) {
    suffixes.emplace_back(Trim(row[0].AsString()));
  }
  return suffixes;
}

std::string Companies::ForCompany(std::string_view sql, std::string_view company) const {
  return ReplaceMacros(
      sql, {[&](std::string_view table) { return Physical(table, company); }, SqlLiteral(company)});
}

std::string Companies::ForAll(std::string_view sql, std::string_view main_table) const {
  const auto tables = MacroTables(sql);
  const bool once = main_table.empty() ? std::all_of(tables.begin(), tables.end(),
                                                     [&](const auto& t) { return IsShared(t); })
                                       : IsShared(main_table);
  if (once) {
    const std::string_view main = !main_table.empty() || tables.empty() ? main_table : tables.front();
    return ForCompany(sql, main.empty() ? CurrentCompany() : sharing_.SuffixOf(main, CurrentCompany()));
  }

  const auto companies = Suffixes();
  const int contexts = std::max(CountContexts(sql), 1);
  const auto most = static_cast<std::size_t>(kMaxContexts / contexts);
  if (companies.size() > most) {
    throw UserError("A consulta de todas as empresas alcança no máximo " + std::to_string(most) +
                    " empresas, e há " + std::to_string(companies.size()) +
                    ". Consulte uma empresa por vez.");
  }
  std::vector<std::string> branches;
  for (const auto& company : companies) branches.push_back(ForCompany(sql, company));
  return Join(branches, "\nUNION ALL\n");
}

}  // namespace orv
