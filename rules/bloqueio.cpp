#include "rules/bloqueio.h"

#include <algorithm>

#include "toolkit/scoped.h"

namespace orv {
namespace {

// The accounts are open for a block, also for a screen that doesn't hold them.
auto AbreContas(ITabela& tabela) {
  tabela.AbreTabela("TbCadConta", false);
  return AtEnd([&tabela] { tabela.SoltaTabela("TbCadConta"); });
}

}  // namespace

bool Bloqueio::Caixa(const std::vector<Date>& datas) { return Fechado(datas, "CX"); }

bool Bloqueio::Conta(std::string_view conta, const std::vector<Date>& datas) {
  const auto abertas = AbreContas(tabela_);
  return tabela_.TbCadConta().Locate("CONTA", Value(conta)) && Fechado(datas, "CT");
}

bool Bloqueio::Movimentos(const std::string& contacor, const std::string& condicao,
                          const std::vector<Date>& tambem) {
  const auto linhas =
      tabela_.IBDatabase().Rows("SELECT DISTINCT CONTA, DT_CONT FROM " + contacor + " WHERE " + condicao);
  if (linhas.empty()) return false;
  std::vector<Date> todas = tambem;
  for (const auto& linha : linhas) todas.push_back(linha[1].AsDate());
  if (Caixa(todas)) return true;
  return std::any_of(linhas.begin(), linhas.end(), [&](const auto& linha) {
    std::vector<Date> datas = tambem;
    datas.push_back(linha[1].AsDate());
    return Conta(linha[0].AsString(), datas);
  });
}

Date Bloqueio::FechadoAte(std::string_view conta) {
  const auto abertas = AbreContas(tabela_);
  const Date caixa = contabil_.PeriodoFechadoAte("CX");
  return tabela_.TbCadConta().Locate("CONTA", Value(conta))
             ? std::max(caixa, contabil_.PeriodoFechadoAte("CT"))
             : caixa;
}

bool Bloqueio::Fechado(const std::vector<Date>& datas, std::string_view kind) {
  // Each date once: the user is told once.
  for (auto data = datas.begin(); data != datas.end(); ++data) {
    if (std::find(datas.begin(), data, *data) == data && contabil_.PeriodoConciliado(*data, kind))
      return true;
  }
  return false;
}

}  // namespace orv
