// Orders in instalments: the payment condition, each instalment's amount and number.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "toolkit/currency.h"
#include "toolkit/date.h"

namespace orv {

// The days of a payment condition: slots of 3 characters, blank where unused.
class CondicaoPagamento {
 public:
  static constexpr int kVagas = 20;
  // No slot holds more days.
  static constexpr int kMaiorPrazo = 999;
  // Of a text of more slots only the first ones count.
  explicit CondicaoPagamento(std::string_view texto, int vagas = kVagas) : texto_(texto), vagas_(vagas) {}
  // The slots that aren't blank.
  int Parcelas() const;
  // Days from the base date to the instalment, 1 for the first; a blank slot is 0. Raises ConversionError for
  // a slot that isn't a number.
  int Dias(int parcela) const;

 private:
  static constexpr int kLargura = 3;
  std::string_view Vaga(int parcela) const;
  std::string texto_;
  int vagas_;
};

// An instalment of a total that is parted into `parcelas`, 1 for the first. The last one takes what rounding
// leaves.
Currency ValorParcela(Currency total, int parcelas, int parcela);

// "001234/03"; the zero stands before every number.
std::string NumeroParcela(std::string_view pedido, int parcela);

// An instalment: 1 for the first, its day before any move, its amount.
struct Parcela {
  int ordem;
  Date dia;
  Currency valor;
};
// Hands on the instalments of a total from a base day on: those of the condition or, where the orders aren't
// parted, one on that day. Raises ConversionError at a slot that isn't a number.
void ParaCadaParcela(Currency total, Date base, std::string_view condicao, bool parte,
                     const std::function<void(const Parcela&)>& parcela);
// So many instalments, each as many days after the one before it as the condition's first slot says.
void ParaCadaParcelaIgual(Currency total, Date base, std::string_view condicao, int parcelas,
                          const std::function<void(const Parcela&)>& parcela);

// An order's amount less its discount in percent.
Currency ValorPedido(double valor, double per_desc);

}  // namespace orv
