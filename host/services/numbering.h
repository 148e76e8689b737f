// Numbers for new rows.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>

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

 private:
  int64_t Draw(const std::string& sequence, int64_t step);
  void NeedSequence(const std::string& sequence);

  TOrvDatabase& db_;
  const Companies& companies_;
  std::function<void(const std::string& ddl)> make_sequence_;
  std::unordered_set<std::string> known_;
};

}  // namespace orv
