// What a house's data may not say: each rule is a statement that finds what breaks it, and the line that
// tells of it.
#pragma once

#include <span>
#include <vector>

namespace orv {

// Rows that contradict one another. In the statement {X} is the company's table; {*...*} a clause that stands
// once for each company, joined by OR; {+...+} one that is joined by +. In the line %1, %2 ... are the row's
// columns.
struct Rule {
  // Whose rows are told: of a shared table they are told once, for the company that keeps it.
  const char* table;
  const char* sql;
  const char* line;
};
std::span<const Rule> Rules();

// What a column of every row must hold.
struct Demand {
  enum Kind {
    OneOf,      // a code of the list
    Amount,     // from 0,00 to 999.999.999.999,99
    AnyAmount,  // as far from zero on either side
    Day,        // neither empty nor the day that stands for an empty one
    Filled,     // not null, since the reports exclude some by "<>", which drops nulls
  } kind;
  const char* column;
  // In the line, such as "operação".
  const char* name;
  // SQL literals with commas between; for a OneOf only.
  const char* codes = nullptr;
};
struct RowRule {
  const char* table;
  const char* key;
  // How the line begins, such as "lançamento ", before the key.
  const char* subject;
  std::vector<Demand> demands;
};
std::span<const RowRule> RowRules();

}  // namespace orv
