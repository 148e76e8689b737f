// What is open of a title, payable or receivable.
#pragma once

#include "toolkit/currency.h"

namespace orv {

// What adds up to the open amount.
struct Titulo {
  Currency valor, juros, desconto, pago, devolvido;
  Currency EmAberto() const { return valor + juros - desconto - pago - devolvido; }
};

}  // namespace orv
