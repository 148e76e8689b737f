#include "rules/bloqueio.h"

#include <algorithm>

namespace orv {

bool Bloqueio::Caixa(std::initializer_list<Date> datas) { return Fechado(datas, "CX"); }

bool Bloqueio::Conta(std::string_view conta, std::initializer_list<Date> datas) {
  return tabela_.TbCadConta().Locate("CONTA", Value(conta)) && Fechado(datas, "CT");
}

Date Bloqueio::FechadoAte(std::string_view conta) {
  const Date caixa = contabil_.PeriodoFechadoAte("CX");
  return tabela_.TbCadConta().Locate("CONTA", Value(conta))
             ? std::max(caixa, contabil_.PeriodoFechadoAte("CT"))
             : caixa;
}

bool Bloqueio::Fechado(std::initializer_list<Date> datas, std::string_view kind) {
  // Each date once: the user is told once.
  for (const Date* data = datas.begin(); data != datas.end(); ++data) {
    if (std::find(datas.begin(), data, *data) == data && contabil_.PeriodoConciliado(*data, kind))
      return true;
  }
  return false;
}

}  // namespace orv
