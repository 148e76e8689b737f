// What is open of a title, payable or receivable.
#pragma once

#include <string>

#include "toolkit/currency.h"

namespace orv {

// What adds up to the open amount.
struct Titulo {
  Currency valor, juros, desconto, pago, devolvido;
  Currency EmAberto() const { return valor + juros - desconto - pago - devolvido; }
};

// The same of a row of PAGTO or of RECEBER, for a statement; `de` is the table's name in it.
inline std::string EmAbertoPagar(const std::string& de = "PAGTO") {
  return "(" + de + ".VALOR + " + de + ".JUROS - " + de + ".VAL_PAG - " + de + ".VAL_DEV - " + de +
         ".DESCONTO)";
}
inline std::string EmAbertoReceber(const std::string& de = "RECEBER") {
  return "(" + de + ".VALOR2 + " + de + ".JUROS - " + de + ".VALOR_PAGO - " + de + ".VAL_DEV - " + de +
         ".DESCONTO)";
}

}  // namespace orv
