// How acquirers write amounts, numbers and days. What isn't one gives the default, never an error.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "toolkit/currency.h"
#include "toolkit/date.h"

namespace orv {

// What an amount's text loses or changes before it is read, each at its first place only.
enum CardMarks : uint8_t {
  kPlainAmount = 0,
  kNoReais = 1,       // "R$ " goes
  kNoPoint = 2,       // "." goes
  kPointIsComma = 4,  // "." becomes ","
  kNoMinus = 8,       // "-" goes
};

// An amount with a decimal comma: a sign, digits, one comma, digits, blanks around. Beyond four decimals it
// is rounded. 0 for any other text and for what no line can be of (kMaxLineAmount).
Currency CardAmount(std::string_view text, unsigned marks);
// "0000000012345" or "0195": as many digits, at most 15, of which the last two are the decimals. 0 for any
// other text, one that its line cut short too.
Currency CardDigits(std::string_view text, std::size_t width);
// Digits with an optional sign, blanks around, within 32 bits.
int CardInteger(std::string_view text, int otherwise);

// "dd/mm/yyyy", and with it "hh:mm" or "hh:mm:ss" if any; the zero of DateTime for what is no such day.
DateTime CardDay(std::string_view text);
DateTime CardMoment(std::string_view text);
// After 1899-12-30, which is the day 0.
bool CountsAsDay(DateTime time);

// A payment's status in Cielo's files, by its code and as it is told; "" for any other.
std::string_view CieloStatus(std::string_view codigo);
std::string_view CieloStatusCode(std::string_view nome);

// A line by its characters.
class CharColumns {
 public:
  explicit CharColumns(std::string_view line);
  // From 1, the last one included. What a short line has of it.
  std::string_view At(std::size_t first, std::size_t last) const;

 private:
  std::string_view line_;
  // As many bytes from the start on are characters.
  std::size_t plain_ = 0;
};

}  // namespace orv
