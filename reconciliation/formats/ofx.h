// Bank statements in OFX: with closed tags (version 2) and with open ones (version 1).
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reconciliation/formats/statement.h"

namespace orv {

// What a file held beside the lines that were handed on.
struct OfxSummary {
  // The accounts of which the file is a statement, each once, the first `kAccounts` of them.
  static constexpr std::size_t kAccounts = 8;
  std::vector<std::string> accounts;
  bool more_accounts = false;
  std::size_t line = 0;            // of the file: the latest that was looked at, from 1
  std::size_t lines = 0;           // transactions handed on
  std::size_t unfinished = 0;      // transactions without their end, left out
  std::size_t unbegun = 0;         // ends without their transaction, left out
  std::size_t no_amounts = 0;      // transactions without an amount and so without a side, left out
  std::size_t unread_amounts = 0;  // transactions handed on with zero, since their amount is no number
};

struct OfxEvents {
  StatementSink line;
  // The server's date; empty when the file has something else there.
  std::function<void(Date)> server_date;
};

// The last three characters of the file's first bank code; nothing without one. `text` as OutsideText gives
// it.
std::optional<std::string> OfxBank(std::string_view text);

// Hands on each transaction when its end is reached, with `conta` and `chave` empty. A line of the file may
// hold several tags. Raises UserError, which names the line, for a transaction whose date isn't one or whose
// amount is beyond kMaxLineAmount; those before it were handed on.
void ReadOfx(std::string_view text, const OfxEvents& events, OfxSummary& summary);

// The amount without its sign: a point or a comma before the decimals, the other one between thousands.
// Nothing for what isn't a number; the greatest amount there is for what doesn't fit.
std::optional<Currency> OfxAmount(std::string_view text);

}  // namespace orv
