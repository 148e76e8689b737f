// What a person typed stays inside its literal, through the macros of a statement too.
#include <string>
#include <string_view>

#include "fuzz/require.h"
#include "host/services/sql_text.h"
#include "toolkit/error.h"

namespace {

// The text is one literal, or a sum of literals, and nothing else.
bool OnlyLiterals(std::string_view sql) {
  for (std::size_t i = 0; i < sql.size();) {
    if (sql[i] == '|') {
      ++i;
      continue;
    }
    if (sql[i] != '\'') return false;
    for (++i;; ++i) {
      if (i >= sql.size()) return false;
      if (sql[i] != '\'') continue;
      if (i + 1 < sql.size() && sql[i + 1] == '\'') {
        ++i;
        continue;
      }
      break;
    }
    ++i;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace orv;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string literal = SqlLiteral(text);
  Require(OnlyLiterals(literal));

  const MacroNames names{[](std::string_view table) { return std::string(table) + "_001"; }, "'_001'"};
  try {
    const std::string sql = ReplaceMacros("SELECT '{}' FROM {CONTACOR} WHERE A = " + literal, names);
    Require(sql == "SELECT '_001' FROM CONTACOR_001 WHERE A = " + literal);
    for (const std::string& piece : SplitSqlList(text, ',')) {
      Require(OnlyLiterals(AsSqlLiteral(piece)));
    }
    // Commas between literals become sums, so that the whole list can be looked at in one go.
    std::string list;
    for (const std::string& piece : SplitSqlList(SqlCodeList(text), ',')) list += "||" + piece;
    Require(OnlyLiterals(list));
    MacroTables(text);
    CountContexts(text);
    ReplaceMacros(text, names);
  } catch (const UserError&) {
  }
  return 0;
}
