// From a figure to where it comes from.
#include "cashflow/rel_fluxo.h"
#include "rules/saldo.h"

namespace orv {

void TfmRelFluxo::DBGrid1DblClick() {
  if (!TbRelatorio.Active() || TbRelatorio.IsEmpty()) return;
  const DetalheDeOrigem detalhe = origens_.Detalhe(Funcoes, TbRelatorio.CurrentRow());
  ShowDetail(detalhe.titulo, ForCompany(detalhe.sql, detalhe.empresa), kLinhasDeOrigem, CompletaOrigem);
}

// A balance is too many movements to list one by one: it is shown month by month.
void TfmRelFluxo::OrvDBGrid1DblClick() {
  if (!TbSaldo.Active() || TbSaldo.IsEmpty()) return;
  const std::string conta = TbSaldo["Conta"].AsString();
  const std::string sql =
      SaldoPorMes("DT_CONT", Creditos(kContaCorrente), "CASE WHEN OPERACAO = '+' THEN 0 ELSE VALOR END",
                  " FROM " + SaldosAte(kContaCorrente, "DT_CONT", dtSaldo.Date(), Today()) +
                      " WHERE PENDENTE = 'N' AND CONTA = " + Funcoes.Aspas(conta));
  ShowDetail(
      "Saldo da conta " + conta,
      LinhasDeSaldo(Tabela.IBDatabase(), ForCompanies(sql, "CONTACOR", CbEmp.Checked(), "ORDER BY 1, 2")),
      kSaldoPorMes, CompletaMes);
}

}  // namespace orv
