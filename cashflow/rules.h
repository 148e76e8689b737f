// What the screens of the cash flow reckon alike.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "frame/services.h"
#include "toolkit/currency.h"
#include "toolkit/date.h"

namespace orv {

// Items that fall due this many days before a period may move into it.
constexpr int kDiasAntes = 3;

// What adds up to the open amount of a title, payable or receivable.
struct Titulo {
  Currency valor, juros, desconto, pago, devolvido;
  Currency EmAberto() const { return valor + juros - desconto - pago - devolvido; }
};

// Days on which due items move. What was asked for once is remembered, so an object serves one gathering.
class DiasEfetivos {
 public:
  DiasEfetivos(IFuncoes& funcoes, IContabil& contabil) : funcoes_(funcoes), contabil_(contabil) {}
  // That day or the next working day.
  Date DiaUtil(Date dia);
  // The day on which the bank credits a document of the situation.
  Date Credito(Date dia, std::string_view situacao);

 private:
  using Dias = std::unordered_map<int32_t, Date>;
  IFuncoes& funcoes_;
  IContabil& contabil_;
  Dias uteis_;
  std::unordered_map<std::string, Dias> creditos_;
};

// The days of a payment condition: 20 slots of 3 characters, blank where unused.
class CondicaoPagamento {
 public:
  explicit CondicaoPagamento(std::string_view texto) : texto_(texto) {}
  // The slots that aren't blank.
  int Parcelas() const;
  // Days from the base date to the instalment, 1 for the first; a blank slot is 0. Raises ConversionError for
  // a slot that isn't a number.
  int Dias(int parcela) const;

 private:
  static constexpr int kVagas = 20;
  static constexpr int kLargura = 3;
  std::string_view Vaga(int parcela) const;
  std::string texto_;
};

// An instalment of a total that is parted into `parcelas`, 1 for the first. The last one takes what rounding
// leaves.
Currency ValorParcela(Currency total, int parcelas, int parcela);

// "001234/03"; the zero stands before every number.
std::string NumeroParcela(std::string_view pedido, int parcela);

// An order's amount less its discount in percent.
Currency ValorPedido(double valor, double per_desc);

}  // namespace orv
