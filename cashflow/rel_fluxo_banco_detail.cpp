// From a figure of the cash flow by bank to what it is made of.
#include "cashflow/rel_fluxo_banco.h"
#include "rules/origem.h"
#include "rules/saldo.h"
#include "toolkit/text.h"

namespace orv {

void TfmRelFluxoBanco::GridContasDblClick() {
  if (TbContas.IsEmpty()) return;
  AbreDaConta(GridContas.SelectedField(), TbContas["Conta"].AsString(), "");
}

// A movement, or what stands on the first row of its account.
void TfmRelFluxoBanco::DBGrid2DblClick() {
  if (TbSaldo.IsEmpty()) return;
  const DetalheDeOrigem movimento = origens_.Detalhe(Funcoes, TbSaldo.CurrentRow());
  if (AbreDaConta(DBGrid2.SelectedField(), TbSaldo["Conta"].AsString(), movimento.empresa)) return;
  ShowDetail(movimento.titulo, ForCompany(movimento.sql, movimento.empresa), kLinhasDeOrigem, CompletaOrigem);
}

bool TfmRelFluxoBanco::AbreDaConta(const std::string& coluna, const std::string& conta,
                                   const std::string& empresa) {
  const auto das_empresas = [&](const std::string& sql, const char* ordem) {
    return empresa.empty() ? DeTodas(sql, "CONTACOR", ordem) : ForCompany(sql, empresa) + "\n" + ordem;
  };
  const std::string da_conta = " AND CONTA = " + Funcoes.Aspas(conta);
  if (coluna == "Anterior") {
    // Too many movements to list one by one: they are shown month by month.
    const std::string sql = SaldoPorMes(
        "DT_CONT", Creditos(kContaCorrente), Debitos(kContaCorrente),
        " FROM " + SaldosAte(kContaCorrente, "DT_CONT", consulta_.periodo.de.AddDays(-1), Today()) +
            " WHERE PENDENTE <> 'S'" + da_conta);
    ShowDetail("Saldo da conta " + conta + " antes de " + consulta_.periodo.de.Brazil(),
               LinhasDeSaldo(Tabela.IBDatabase(), das_empresas(sql, "ORDER BY 1, 2")), kSaldoPorMes,
               CompletaMes);
    return true;
  }
  const auto movimentos = [&](const std::string& titulo, const std::string& condicao) {
    ShowDetail(titulo + " da conta " + conta,
               das_empresas(origem::Movimentos(condicao + da_conta), "ORDER BY 4, 2"), kLinhasDeOrigem,
               CompletaOrigem);
    return true;
  };
  if (coluna == "Creditos" || coluna == "Cred_BCO")
    return movimentos("Créditos do período", NoPeriodo() + " AND OPERACAO = '+'");
  if (coluna == "Debitos" || coluna == "Debi_BCO")
    return movimentos("Débitos do período", NoPeriodo() + " AND OPERACAO = '-'");
  if (coluna == "Saldo" || coluna == "Menor" || coluna == "Dia")
    return movimentos("Movimentos do período", NoPeriodo());
  if (coluna == "Cheq_Pend") return movimentos("Cheques pendentes", Pendentes());
  return false;
}

void TfmRelFluxoBanco::AbreTitulo(TOrvQuery& titulos, Fonte fonte, const char* chave) {
  if (!titulos.Active() || titulos.IsEmpty()) return;
  const DetalheDeOrigem detalhe =
      DetalheDaFonte(Funcoes, fonte, titulos[chave].AsString(), Trim(titulos["EMPRESA"].AsString()));
  ShowDetail(detalhe.titulo, ForCompany(detalhe.sql, detalhe.empresa), kLinhasDeOrigem, CompletaOrigem);
}

// The accounts that the list leaves out, with what they have.
void TfmRelFluxoBanco::BtForaClick() {
  static constexpr auto kFora = std::to_array<ReportField>({{"Empresa", FieldType::String, 4},
                                                            {"Conta", FieldType::String, 13},
                                                            {"Créditos", FieldType::Currency},
                                                            {"Débitos", FieldType::Currency},
                                                            {"Cheq. Pendentes", FieldType::Currency}});
  TClientDataSet linhas("Detalhe");
  LayDown(linhas, kFora);
  for (auto& [chave, conta] : contas_) {
    if (conta.listada) continue;
    Value linha[] = {chave.first, chave.second, conta.por_operacao["+"], conta.por_operacao["-"],
                     conta.pendente.value_or(Currency())};
    linhas.AppendRow(linha);
  }
  linhas.First();
  Funcoes.TelaDetalhamento(
      "Contas sem movimento antes de " + consulta_.periodo.de.Brazil() + ", fora da lista", linhas);
}

}  // namespace orv
