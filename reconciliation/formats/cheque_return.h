// The bank's return file, whose lines name the cheques that were cleared, in fixed columns laid out by
// POSICAO.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "reconciliation/formats/position.h"

namespace orv {

// What a line names: a cheque by its bank, branch, account and number, and the day as the file has it.
struct ChequeReturn {
  std::array<std::string, 4> cheque;
  std::string data;
};

// The lines between the first one and the last one, which are the file's own. Raises UserError for more lines
// than a return file has. `text` as OutsideText gives it.
std::vector<ChequeReturn> ReadChequeReturn(std::string_view text, const PositionLayout& layout);

// "YYYYMMDD". Raises ConversionError.
Date ChequeReturnDay(const std::string& text);

}  // namespace orv
