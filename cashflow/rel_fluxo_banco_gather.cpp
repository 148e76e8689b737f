// What the cash flow by bank reads of the ledger and of the titles.
#include <unordered_set>
#include <utility>
#include <vector>

#include "cashflow/rel_fluxo_banco.h"
#include "rules/menor_saldo.h"
#include "rules/saldo.h"
#include "rules/titulo.h"
#include "toolkit/text.h"

namespace orv {

void TfmRelFluxoBanco::btnConfirmaClick() {
  LbMenor.SetCaption("");
  BtFora.SetVisible(false);
  LbConsulta.Mostra("A última consulta não terminou. Confirme de novo.");
  try {
    Gather({&TbSaldo, &TbChequePendente, &tbDebitosCreditos, &TbContas},
           [this](Gathering& andamento) { Monta(andamento); });
  } catch (...) {
    QryPagar.Close();
    QryReceber.Close();
    throw;
  }
}

void TfmRelFluxoBanco::Monta(Gathering& andamento) {
  consulta_ = {{EdtDataDe.Date(), edtDataAte.Date()},
               EdtDtCheque.Date(),
               CbEmpresa.Checked(),
               CbTotDia.Checked(),
               EdtDataDe.Text() + " a " + edtDataAte.Text(),
               Where("CONTACOR.CONTA", "=", EdtConta)};
  Cria_Tabela();
  busca_Saldos(andamento);
  andamento.Stage("Títulos a pagar");
  AbertoPagar();
  andamento.Stage("Títulos a receber");
  AbertoReceber();
  SomaContas();
  MostraMenorSaldo();
  MostraForaDaLista();
}

void TfmRelFluxoBanco::Cria_Tabela() {
  LayDown(TbSaldo, kSaldo);
  LayDown(TbChequePendente, kChequePendente);
  LayDown(tbDebitosCreditos, kDebitosCreditos);
  LayDown(TbContas, kContas);
  origens_.Limpa();
  contas_.clear();
  sem_operacao_ = {};
}

// --- What the statements ask for.

std::string TfmRelFluxoBanco::Antes() const {
  return "DT_CONT < " + Funcoes.AspasData(consulta_.periodo.de) + " AND PENDENTE <> 'S'";
}

std::string TfmRelFluxoBanco::NoPeriodo() const {
  return "DT_CONT BETWEEN " + Funcoes.AspasData(consulta_.periodo.de) + " AND " +
         Funcoes.AspasData(consulta_.periodo.ate) + " AND PENDENTE <> 'S'";
}

std::string TfmRelFluxoBanco::Pendentes() const {
  return "DT_CONT <= " + Funcoes.AspasData(consulta_.cheque) + " AND " + kPendente;
}

// --- Accounts. Each company's rows follow those of the company before it.

void TfmRelFluxoBanco::busca_Saldos(Gathering& andamento) {
  andamento.Stage("Cheques pendentes");
  BuscaChequesPendentes();
  andamento.Stage("Débitos e créditos do período");
  BuscaDebitosCreditos();
  andamento.Stage("Saldos anteriores");
  BuscaMovimentos(andamento);
  TbSaldo.SetIndexFieldNames("conta");
}

void TfmRelFluxoBanco::BuscaChequesPendentes() {
  const std::string sql = "SELECT '{}' AS EMPRESA, CONTA, OPERACAO, " + Soma("VALOR") + " AS VALOR FROM " +
                          SaldosAte(kContaCorrente, "DT_CONT", consulta_.cheque, Today()) + " WHERE " +
                          kPendente + consulta_.conta +
                          " GROUP BY OPERACAO, CONTA HAVING SUM(QUANTIDADE) <> 0";
  for (const auto& v : LinhasDeSaldo(Tabela.IBDatabase(), DeTodas(sql, "CONTACOR", "ORDER BY 1, 2"))) {
    auto& pendente = contas_[{v[0].AsString(), v[1].AsString()}].pendente;
    const Currency valor = SomaDe(v[3]);
    pendente = pendente.value_or(Currency()) + (v[2].Text() == "-" ? -valor : valor);
  }
  for (const auto& [chave, conta] : contas_) {
    Value linha[] = {chave.second, conta.pendente->ToDouble()};
    TbChequePendente.AppendRow(linha);
  }
}

void TfmRelFluxoBanco::BuscaDebitosCreditos() {
  // Day by day, which the lowest balance asks for.
  const std::string sql = "SELECT '{}' AS EMPRESA, CONTA, OPERACAO, DT_CONT, " + Soma("VALOR") +
                          " AS VALOR FROM {CONTACOR} CONTACOR WHERE " + NoPeriodo() + consulta_.conta +
                          " GROUP BY OPERACAO, CONTA, DT_CONT";
  ForEach(DeTodas(sql, "CONTACOR", "ORDER BY 1, 2"), [this](std::span<Value> v) {
    DaConta& conta = contas_[{v[0].AsString(), v[1].AsString()}];
    const std::string operacao = v[2].AsString();
    const Currency valor = SomaDe(v[4]);
    conta.por_operacao[operacao] += valor;
    if (operacao == "+") conta.por_dia[v[3].AsDate()] += valor;
    if (operacao == "-") conta.por_dia[v[3].AsDate()] -= valor;
  });
  for (const auto& [chave, conta] : contas_) {
    for (const auto& [operacao, valor] : conta.por_operacao) {
      Value linha[] = {operacao, chave.second, valor.ToDouble()};
      tbDebitosCreditos.AppendRow(linha);
    }
  }
}

TfmRelFluxoBanco::Cadastro TfmRelFluxoBanco::LeCadastro(std::string_view sql) const {
  Cadastro lido;
  ForEach(DeTodas(sql, "CONTACOR", ""), [&](std::span<Value> v) {
    lido[{v[0].AsString(), v[1].AsString()}] = {std::move(v[2]), v[3].AsCurrency()};
  });
  return lido;
}

void TfmRelFluxoBanco::BuscaMovimentos(Gathering& andamento) {
  enum Resto : uint8_t { mEmpresa, mLancamento };
  // Joined to every movement, accounts and banks would take longer to read than the movements.
  Cadastro contas = LeCadastro("SELECT '{}' AS CODIGO, CONTA, EMPRESA, LIMITE FROM {CADCONTA}"),
           bancos = LeCadastro("SELECT '{}' AS CODIGO, BANCO, NOME_BANCO, 0 AS LIMITE FROM {CADBAN}");
  const std::string sql =
      "SELECT '{}' AS EMPRESA, CONTACOR.CONTA, CONTACOR.BANCO, CONTACOR.VALOR, CONTACOR.OPERACAO, "
      "CONTACOR.LANCAMENTO FROM {CONTACOR} CONTACOR WHERE CONTACOR." +
      Antes() + consulta_.conta;
  const Value periodo(consulta_.texto), por_dia(consulta_.por_dia ? "S" : "N"), nada(0.0);
  std::unordered_set<std::string> com_limite;
  DaConta* conta = nullptr;
  Chave anterior;
  std::string banco;
  Value nome_banco, titular;
  ForEachRow<kSaldo>(DeTodas(sql, "CONTACOR", "ORDER BY 1, 2, 6"), [&](Linha& linha, std::span<Value> v) {
    const bool outra =
        conta == nullptr || linha["Conta"].Text() != anterior.second || v[mEmpresa].Text() != anterior.first;
    if (outra) {
      anterior = {v[mEmpresa].AsString(), linha["Conta"].AsString()};
      conta = &contas_[anterior];
      titular = contas[anterior].nome;
    }
    if (outra || linha["Banco"].Text() != banco) {
      banco = linha["Banco"].AsString();
      nome_banco = bancos[{anterior.first, banco}].nome;
    }
    linha["NomeBanco"] = nome_banco;
    linha["Titular"] = titular;
    linha["Cred_BCO"] = linha["Debi_BCO"] = linha["Limite"] = nada;
    linha["Cheq_Pend"] = Value();
    linha["Periodo"] = periodo;
    linha["TotDia"] = por_dia;
    if (outra) {
      // The limit of an account that several companies have is that of the first.
      if (com_limite.insert(anterior.second).second) conta->limite = contas[anterior].limite;
      PrimeiraDaConta(linha, *conta);
    }
    const std::string_view operacao = linha["Operacao"].Text();
    const Currency valor = linha["Valor"].AsCurrency();
    if (operacao == "+") {
      conta->anterior += valor;
    } else if (operacao == "-") {
      conta->anterior -= valor;
    } else {
      sem_operacao_ += valor;
    }
    TbSaldo.AppendRow(linha.Values());
    origens_.Anota(Fonte::Movimento, std::move(v[mLancamento]), v[mEmpresa].Text());
    andamento.Advance();
  });
}

// What the account has in all stands on its first row.
void TfmRelFluxoBanco::PrimeiraDaConta(Linha& linha, DaConta& conta) {
  conta.listada = true;
  conta.banco = linha["Banco"];
  conta.nome_banco = linha["NomeBanco"];
  conta.titular = linha["Titular"];
  linha["Limite"] = conta.limite.ToDouble();
  linha["Cred_BCO"] = conta.por_operacao["+"].ToDouble();
  linha["Debi_BCO"] = conta.por_operacao["-"].ToDouble();
  if (conta.pendente) linha["Cheq_Pend"] = conta.pendente->ToDouble();
}

// --- Titles, each company's own: two that are alike stay two.

void TfmRelFluxoBanco::AbertoPagar() {
  QryPagar.SQL.SetText(
      DeTodas("SELECT PAGTO.NUM_AP, PAGTO.DUPLI, PAGTO.CODCRE, ENTIDADE.NOME, PAGTO.DT_EMI, "
              "PAGTO.DT_VEN, " +
                  EmAbertoPagarComDevolvido() +
                  " AS VALOR, '{}' AS EMPRESA FROM {PAGTO} PAGTO"
                  " LEFT JOIN {ENTIDADE} ENTIDADE ON ENTIDADE.CODCLI = PAGTO.CODCRE"
                  " WHERE " +
                  EmAbertoPagarComDevolvido() + " > 0" + VenceNoPeriodo("PAGTO.DT_VEN"),
              "PAGTO", "ORDER BY 6, 8, 1"));
  QryPagar.Open();
}

void TfmRelFluxoBanco::AbertoReceber() {
  QryReceber.SQL.SetText(
      DeTodas("SELECT RECEBER.NUMERO, RECEBER.CODCLI, RECEBER.FATURA, ENTIDADE.NOME, RECEBER.DT_EMISSAO, "
              "RECEBER.DT_VENCTO, " +
                  EmAbertoReceber() +
                  " AS VALOR, '{}' AS EMPRESA FROM {RECEBER} RECEBER"
                  " LEFT JOIN {ENTIDADE} ENTIDADE ON ENTIDADE.CODCLI = RECEBER.CODCLI"
                  " WHERE " +
                  EmAbertoReceber() + " > 0" + VenceNoPeriodo("RECEBER.DT_VENCTO") +
                  WhereIn("RECEBER.SITUACAO", EdtSit),
              "RECEBER", "ORDER BY 6, 8, 1"));
  QryReceber.Open();
}

std::string TfmRelFluxoBanco::VenceNoPeriodo(std::string_view coluna) const {
  return WhereBetween(coluna, consulta_.periodo.de, consulta_.periodo.ate);
}

// --- What the page shows of it.

void TfmRelFluxoBanco::SomaContas() {
  std::map<std::string, DaConta> somas;
  for (auto& [chave, conta] : contas_) {
    if (!conta.listada) continue;
    DaConta& soma = somas[chave.second];
    if (!std::exchange(soma.listada, true))
      soma.banco = conta.banco, soma.nome_banco = conta.nome_banco, soma.titular = conta.titular;
    soma.anterior += conta.anterior;
    soma.limite += conta.limite;
    if (conta.pendente) soma.pendente = soma.pendente.value_or(Currency()) + *conta.pendente;
    for (const auto& [operacao, valor] : conta.por_operacao) soma.por_operacao[operacao] += valor;
    for (const auto& [dia, valor] : conta.por_dia) soma.por_dia[dia] += valor;
  }
  bool cabem = true;
  for (auto& [codigo, conta] : somas) {
    MenorSaldo menor(conta.anterior, consulta_.periodo.de);
    for (const auto& [dia, valor] : conta.por_dia) menor.Soma(dia, valor);
    ReportRow<kContas> linha;
    linha["Conta"] = codigo;
    linha["Banco"] = conta.banco;
    linha["NomeBanco"] = conta.nome_banco;
    linha["Titular"] = conta.titular;
    linha["Anterior"] = conta.anterior;
    linha["Creditos"] = conta.por_operacao["+"];
    linha["Debitos"] = conta.por_operacao["-"];
    linha["Saldo"] = conta.anterior + conta.por_operacao["+"] - conta.por_operacao["-"];
    if (conta.pendente) linha["Cheq_Pend"] = *conta.pendente;
    linha["Limite"] = conta.limite;
    linha["Menor"] = menor.Valor();
    linha["Dia"] = menor.Dia();
    cabem = cabem && conta.anterior.FitsField() && linha["Saldo"].AsCurrency().FitsField();
    TbContas.AppendRow(linha.Values());
  }
  if (!cabem)
    ApontaForaDeMedida(User(), Tabela.IBDatabase(), DeTodas(ForaDeMedida(kContaCorrente), "CONTACOR", ""));
}

// All accounts, with the titles on the days on which they are due.
void TfmRelFluxoBanco::MostraMenorSaldo() {
  Currency inicial;
  std::map<Date, Currency> por_dia;
  for (const auto& [chave, conta] : contas_) {
    if (!conta.listada) continue;
    inicial += conta.anterior;
    for (const auto& [dia, valor] : conta.por_dia) por_dia[dia] += valor;
  }
  const auto titulos = [&](TOrvQuery& lidos, const char* vencimento, bool entrada) {
    const Field &dia = lidos[vencimento], &valor = lidos["VALOR"];
    for (int64_t i = 0, n = lidos.DisplayCount(); i < n; ++i) {
      const Currency aberto = lidos.Cell(i, valor).AsCurrency();
      por_dia[lidos.Cell(i, dia).AsDate()] += entrada ? aberto : -aberto;
    }
  };
  titulos(QryPagar, "DT_VEN", false);
  titulos(QryReceber, "DT_VENCTO", true);
  MenorSaldo menor(inicial, consulta_.periodo.de);
  for (const auto& [dia, valor] : por_dia) menor.Soma(dia, valor);
  menor.Mostra(LbMenor, ", com os títulos do período e sem os cheques pendentes");
}

// The money that no column has.
void TfmRelFluxoBanco::MostraForaDaLista() {
  int64_t contas = 0;
  DaConta fora;
  Currency pendente;
  for (const auto& [chave, conta] : contas_) {
    for (const auto& [operacao, valor] : conta.por_operacao) {
      if (operacao != "+" && operacao != "-") sem_operacao_ += valor;
      if (!conta.listada) fora.por_operacao[operacao] += valor;
    }
    if (conta.listada) continue;
    ++contas;
    pendente += conta.pendente.value_or(Currency());
  }
  std::vector<std::string> avisos;
  if (contas > 0)
    avisos.push_back("Sem movimento antes de " + consulta_.periodo.de.Brazil() +
                     " e por isso fora da lista: " + std::to_string(contas) +
                     (contas == 1 ? " conta" : " contas") + ", com créditos de " +
                     fora.por_operacao["+"].Brazil() + ", débitos de " + fora.por_operacao["-"].Brazil() +
                     " e cheques pendentes de " + pendente.Brazil() + ".");
  if (!sem_operacao_.IsZero())
    avisos.push_back("Movimentos que não são crédito nem débito, fora das somas: " + sem_operacao_.Brazil() +
                     ".");
  LbConsulta.Mostra(Join(avisos, " "));
  BtFora.SetVisible(contas > 0);
}

}  // namespace orv
