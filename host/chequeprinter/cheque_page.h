// What is sent to a cheque printer: one cheque as lines of fixed positions in code page 850.
#pragma once

#include <string>
#include <string_view>

#include "toolkit/currency.h"
#include "toolkit/date.h"

namespace orv {

// Where a model of printer puts what stands on a cheque. Lines and columns count from 0.
struct ChequeModel {
  std::string_view start;  // makes the printer ready
  std::string_view end;    // gives the cheque back
  std::string_view line_end;
  int amount_line, amount_column;
  int words_line, words_column, words_width;  // the first line of the words
  int words2_column, words2_width;            // the second stands below it
  int payee_line, payee_column, payee_width;
  int place_line, place_column, place_width;
};

// From 1 to 4.
const ChequeModel& GetChequeModel(int model);

struct ChequeText {
  Currency amount;
  std::string words;  // the amount in words
  std::string payee;
  std::string city;
  Date date;
};

// The bytes for one cheque. Raises UserError when the words have no room on their two lines.
std::string ChequePage(const ChequeModel& model, const ChequeText& text);

// UTF-8 as code page 850. Control characters go, so that no text can command the printer; what the page lacks
// becomes "?".
std::string ToCodePage850(std::string_view text);

}  // namespace orv
