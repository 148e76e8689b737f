// The lowest balance of a run of days, and the day on which it is reached.
#pragma once

#include <array>
#include <string_view>

#include "frame/report_set.h"
#include "toolkit/controls.h"
#include "toolkit/currency.h"
#include "toolkit/date.h"

namespace orv {

class MenorSaldo {
 public:
  // From the balance with which a first day begins.
  MenorSaldo(Currency inicial, Date dia) : saldo_(inicial), menor_(inicial), dia_(dia), ate_(dia) {}
  // The days come in order; all of one day counts together.
  void Soma(Date dia, Currency valor);
  Currency Valor() const { return Baixou() ? saldo_ : menor_; }
  // The first day of several.
  Date Dia() const { return Baixou() ? ate_ : dia_; }
  // Makes a line of the page of it, in the colour of its sign; `ressalva` says what it doesn't count.
  void Mostra(Label& linha, std::string_view ressalva = "") const;

 private:
  bool Baixou() const { return saldo_ < menor_; }

  Currency saldo_, menor_;
  // The day of the lowest, and the latest one.
  Date dia_, ate_;
};

// An account's balance, the lowest one that it comes to by what is expected of it, and its day.
extern const std::array<ReportField, 5> kMenorSaldo;

}  // namespace orv
