// The lowest balance that money comes to as the days go by.
#pragma once

#include <array>

#include "frame/report_set.h"
#include "toolkit/controls.h"
#include "toolkit/currency.h"
#include "toolkit/date.h"

namespace orv {

class MenorSaldo {
 public:
  // The balance with which the first day begins.
  MenorSaldo(Currency saldo, Date dia) : corrente_(saldo), menor_(saldo), dia_(dia), ate_(dia) {}
  // The days come in their order; of one day all counts together.
  void Soma(Date dia, Currency valor);
  // Of what was added so far, and the first day with that balance.
  Currency Valor() { return Fecha(), menor_; }
  Date Dia() { return Fecha(), dia_; }

 private:
  void Fecha();

  Currency corrente_, menor_;
  Date dia_, ate_;
};

// The line of a page that tells it, in the colour of its sign.
void MostraMenorSaldo(Label& linha, MenorSaldo& menor);

// An account's balance, the lowest one that it comes to by what is expected of it, and its day.
extern const std::array<ReportField, 5> kMenorSaldo;

}  // namespace orv
