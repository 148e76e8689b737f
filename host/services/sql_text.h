// The text of the module's SQL: literals, lists, and the macros that name tables of a company.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

// A quoted literal. The text "{}" is written as a sum of two, since the bare literal '{}' stands for a
// company's suffix.
std::string SqlLiteral(std::string_view text);

// The pieces of a list between separators, of which those inside quotes don't part. Blanks around a piece go.
std::vector<std::string> SplitSqlList(std::string_view list, char separator);

// One piece of such a list as a literal: a quoted one as it stands, anything else quoted.
std::string AsSqlLiteral(std::string_view piece);

// The codes of a list field, `01, 02` or `'01','02'`, quoted anew. Blank pieces fall out.
std::string SqlCodeList(std::string_view list);

// How the macros of a statement are replaced for one company.
struct MacroNames {
  // The physical name of a logical table.
  std::function<std::string(std::string_view table)> table;
  // What stands for the literal '{}'.
  std::string suffix_literal;
};

// The statement with every {X} and every literal '{}' replaced. What stands inside quotes is never touched.
std::string ReplaceMacros(std::string_view sql, const MacroNames& names);

// The logical names in the macros of a statement, each as often as it stands there.
std::vector<std::string> MacroTables(std::string_view sql);

// How many of the 255 contexts that the database allows a statement this one takes: its tables, its
// sub-selects and its groupings.
int CountContexts(std::string_view sql);

}  // namespace orv
