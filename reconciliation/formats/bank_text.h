// Bank statements as lines of text, separated or in fixed columns, laid out by POSICAO.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "reconciliation/formats/position.h"
#include "reconciliation/formats/statement.h"

namespace orv {

struct BankTextSummary {
  std::size_t line = 0;           // of the file: the latest that was looked at, from 1
  std::size_t read = 0;           // lines after the first, blank ones apart
  std::size_t lines = 0;          // handed on
  std::size_t other_account = 0;  // left out, since they aren't of the account asked for
  std::size_t refused = 0;        // left out, without a key or marked not to be taken
};

// Hands on the lines of `account`, one of `accounts` (all of CADCONTA in the order of the table). The first
// line of the file is its heading. A line without the separator is read in fixed columns. Raises UserError,
// which names the line, for a date or an amount that isn't one; the lines before it were handed on. `text` as
// OutsideText gives it.
void ReadBankText(std::string_view text, const PositionLayout& layout, std::span<const std::string> accounts,
                  std::string_view account, const StatementSink& sink, BankTextSummary& summary);

}  // namespace orv
