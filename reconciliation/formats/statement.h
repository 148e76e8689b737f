// A line of a bank statement, as the readers of its files hand it on.
#pragma once

#include <functional>
#include <string_view>

#include "toolkit/currency.h"
#include "toolkit/date.h"

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

using StatementSink = std::function<void(const StatementLine&)>;

}  // namespace orv
