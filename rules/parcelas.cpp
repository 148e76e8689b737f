#include "rules/parcelas.h"

#include <cstdlib>

#include "toolkit/text.h"
#include "toolkit/value.h"

namespace orv {

std::string_view CondicaoPagamento::Vaga(int parcela) const {
  const auto from = static_cast<std::size_t>((parcela - 1) * kLargura);
  const std::string_view before = CutChars(texto_, from);
  return Trim(CutChars(std::string_view(texto_).substr(before.size()), kLargura));
}

int CondicaoPagamento::Parcelas() const {
  int count = 0;
  for (int i = 1; i <= vagas_; ++i) count += Vaga(i).empty() ? 0 : 1;
  return count;
}

int CondicaoPagamento::Dias(int parcela) const {
  const std::string_view vaga = Vaga(parcela);
  return vaga.empty() ? 0 : static_cast<int>(ParseInteger(vaga));
}

Currency ValorParcela(Currency total, int parcelas, int parcela) {
  if (parcela < parcelas) {
    // The exact quotient, rounded to cents at once.
    constexpr int64_t kCent = Currency::kScale / 100;
    return Currency::FromRaw(RoundedQuotient(total.Raw(), parcelas * kCent) * kCent);
  }
  // The share that the last one goes by is rounded to four places first.
  const Currency share = (total / parcelas).Round2();
  return total - share * (parcelas - 1);
}

std::string NumeroParcela(std::string_view pedido, int parcela) {
  return std::string(pedido) + "/0" + std::to_string(parcela);
}

void ParaCadaParcela(Currency total, Date base, std::string_view condicao, bool parte,
                     const std::function<void(const Parcela&)>& parcela) {
  const CondicaoPagamento dias(condicao);
  const int parcelas = parte ? dias.Parcelas() : 1;
  for (int i = 1; i <= parcelas; ++i)
    parcela({i, base.AddDays(parte ? dias.Dias(i) : 0), ValorParcela(total, parcelas, i)});
}

void ParaCadaParcelaIgual(Currency total, Date base, std::string_view condicao, int parcelas,
                          const std::function<void(const Parcela&)>& parcela) {
  const int dias = CondicaoPagamento(condicao).Dias(1);
  for (int i = 1; i <= parcelas; ++i)
    parcela({i, base = base.AddDays(dias), ValorParcela(total, parcelas, i)});
}

Currency ValorPedido(double valor, double per_desc) {
  return Currency::FromDouble(valor) - Currency::FromDouble(valor * (per_desc / 100));
}

}  // namespace orv
