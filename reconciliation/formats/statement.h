// A line of a bank statement, as the readers of its files hand it on.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "toolkit/currency.h"
#include "toolkit/date.h"
#include "toolkit/error.h"

namespace orv {

// The texts are UTF-8 and stand only during the call.
struct StatementLine {
  std::string_view conta;  // as resolved; "" where the file's account isn't asked
  std::string_view docto;
  Date dt_cont;
  Currency valor;
  std::string_view operacao;  // "C", "D", or what the file has in its place
  std::string_view obs;
  std::string_view chave;
};

// The most that a line can be of: 999,999,999,999.99. Sums of many such lines still fit their fields.
constexpr Currency kMaxLineAmount = Currency::FromRaw(9'999'999'999'999'900);

// Raises ConversionError, which names `text`, where the amount that was read from it is beyond that.
inline void RequireLineAmount(Currency amount, std::string_view text) {
  if (amount > kMaxLineAmount || amount < -kMaxLineAmount)
    throw ConversionError(std::string(text), "um valor até " + kMaxLineAmount.Brazil());
}

using StatementSink = std::function<void(const StatementLine&)>;

}  // namespace orv
