// From a figure to where it comes from: a movement's rows, the titles that it settled, its accounting
// entries; a balance before the period month by month.
#include "reports/lancamentos.h"
#include "reports/rel_cc.h"
#include "rules/origem.h"
#include "rules/saldo.h"

namespace orv {

void TfmRelCC::DBGrid1DblClick() {
  if (!TbRelatorio.Active() || TbRelatorio.IsEmpty()) return;
  const std::string lancamento = TbRelatorio["Lancamento"].AsString();
  if (lancamento.empty()) {
    MostraSaldoAnterior();
  } else {
    MostraLancamento(lancamento, empresa_da_linha_.at(TbRelatorio.CurrentRow()));
  }
}

void TfmRelCC::DBGrid2DblClick() {
  if (TbFinan.IsEmpty()) return;
  MostraLancamento(TbFinan["Lancto"].AsString(), empresa_do_titulo_.at(TbFinan.CurrentRow()));
}

void TfmRelCC::MostraLancamento(const std::string& lancamento, uint16_t empresa) {
  const std::string& sufixo = empresas_.at(empresa);
  // The titles are those that the report shows: of any company where all were asked for.
  const auto titulos = [&](const std::string& sql, const char* tabela) {
    return consulta_.tipo == Tipo::TodasEmpresas ? PorEmpresa(sql, tabela) : ForCompany(sql, sufixo);
  };
  const lancamentos::Origem dele = lancamentos::OrigemDe(Funcoes.Aspas(lancamento));
  ShowDetail("Lançamento " + lancamento, ForCompany(dele.movimentos, sufixo) + origem::kUniao +
                                             titulos(dele.recebidos, "RECEBERB") + origem::kUniao +
                                             titulos(dele.pagos, "PAGTO1") + origem::kUniao +
                                             ForCompany(dele.contabilizacao, sufixo));
}

// A balance is too many movements to list one by one.
void TfmRelCC::MostraSaldoAnterior() {
  const std::string sql = SaldoPorMes(consulta_.data, Creditos(kContaCorrente, "CONTACOR"),
                                      Debitos(kContaCorrente, "CONTACOR"), Anteriores());
  ShowDetail("Saldo anterior da conta " + TbRelatorio["Conta"].AsString(),
             LinhasDeSaldo(Tabela.IBDatabase(), PorEmpresa(sql, "CONTACOR", "ORDER BY 1, 2")), kSaldoPorMes,
             CompletaMes);
}

}  // namespace orv
