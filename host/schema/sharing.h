// Which tables the companies share, and where each company's tables and numbers stand for that reason.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/schema/tables.h"
#include "toolkit/database.h"
#include "toolkit/text.h"

namespace orv {

// Where a company's numbers of a kind come from, and the columns that hold them, by physical name.
struct NumberPlace {
  // The suffix of the sequence.
  std::string suffix;
  std::vector<ColumnRef> columns;
};

class Sharing {
 public:
  // Reads the companies and what they share as they are now.
  explicit Sharing(TOrvDatabase& db);

  // The suffixes of all companies, in order.
  const std::vector<std::string>& Companies() const { return companies_; }
  // The logical names of the shared tables, in order.
  const std::vector<std::string>& Tables() const { return tables_; }
  bool Holds(std::string_view table) const { return owners_.contains(table); }

  // The suffix under which a company's table stands: for a shared table the one of the company that keeps it,
  // "" for a global table.
  std::string SuffixOf(std::string_view table, std::string_view company) const;
  // The physical name, with the table's name as it is given.
  std::string Physical(std::string_view table, std::string_view company) const;

  // Companies that share one of the tables meet in it, and so number together.
  NumberPlace NumbersOf(const SequenceDef& kind, std::string_view company) const;

 private:
  std::vector<std::string> companies_;
  std::vector<std::string> tables_;
  std::unordered_map<std::string, std::string, NameHash, NameEqual> owners_;
};

// The greatest number of at most `digits` digits in the columns, 0 without one. Texts that are no numbers
// don't count, nor do those in the last tenth of the range: a lone one there, typed by hand, is no reason to
// begin behind it.
int64_t TopNumber(TOrvDatabase& db, const std::vector<ColumnRef>& columns, int digits);

}  // namespace orv
