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

// Draws the numbers of a column from its sequence in the database, which stands outside transactions: two
// sessions never get the same one, and one that was drawn and not used is gone.
class Numbering {
 public:
  // `make_sequence` runs the statement that makes a sequence in a transaction of its own.
  Numbering(TOrvDatabase& db, const Companies& companies,
            std::function<void(const std::string& ddl)> make_sequence)
      : db_(db), companies_(companies), make_sequence_(std::move(make_sequence)) {}

  // The next number of a column of the company's table that no row holds yet, padded with zeros to `width`
  // digits. Raises UserError for an unknown column and when the column has no room for a further number.
  std::string Next(std::string_view table, std::string_view column, int width, std::string_view company);
  // The next `count` numbers, ascending: what as many calls would give, drawn in one go.
  std::vector<std::string> Next(std::string_view table, std::string_view column, int width,
                                std::string_view company, std::size_t count);

 private:
  // A column's place in the database; raises UserError where it can't have numbers of that width.
  struct Place {
    std::string column, physical, sequence, end;
    std::size_t width;
  };
  Place Find(std::string_view table, std::string_view column, int width, std::string_view company) const;
  int64_t Draw(const std::string& sequence, int64_t step);
  void NeedSequence(const std::string& sequence);

  TOrvDatabase& db_;
  const Companies& companies_;
  std::function<void(const std::string& ddl)> make_sequence_;
  std::unordered_set<std::string> known_;
};

}  // namespace orv
