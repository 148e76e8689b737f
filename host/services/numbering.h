// Numbers for new rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "host/services/companies.h"
#include "toolkit/database.h"

namespace orv {

// Draws numbers from their sequence in the database, which stands outside transactions: two sessions never
// get the same one, and one that was drawn and not used is gone. Columns that hold one kind of number draw
// from one sequence.
class Numbering {
 public:
  // `make_sequence` runs the statement that makes a sequence in a transaction of its own.
  Numbering(TOrvDatabase& db, const Companies& companies,
            std::function<void(const std::string& ddl)> make_sequence)
      : db_(db), companies_(companies), make_sequence_(std::move(make_sequence)) {}

  // The next number for a column of the company's table, padded with zeros to `width` digits: one that no
  // column of its kind holds. Raises UserError for an unknown column and when the column has no room for a
  // further number.
  std::string Next(std::string_view table, std::string_view column, int width, std::string_view company);
  // The next `count` numbers, ascending: what as many calls would give, drawn in one go.
  std::vector<std::string> Next(std::string_view table, std::string_view column, int width,
                                std::string_view company, std::size_t count);

 private:
  // A kind's place in the database.
  struct Place {
    std::vector<ColumnRef> columns;
    std::string sequence, end;
    // Of the narrowest column.
    std::size_t width;
  };
  // Raises UserError where the column can't have numbers of that width.
  Place Find(std::string_view table, std::string_view column, int width, std::string_view company) const;
  bool Taken(const Place& place, const std::string& number);
  int64_t Draw(const std::string& sequence, int64_t step);
  void NeedSequence(const std::string& sequence);

  TOrvDatabase& db_;
  const Companies& companies_;
  std::function<void(const std::string& ddl)> make_sequence_;
  std::unordered_set<std::string> known_;
};

}  // namespace orv
