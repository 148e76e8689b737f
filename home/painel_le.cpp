// What the home reads. All but the balances is found by what is open, or by its days: what was settled long
// ago costs nothing.
#include <algorithm>

#include "home/painel.h"
#include "rules/menor_saldo.h"
#include "rules/titulo.h"

namespace orv {
namespace {

// The first day on which a report's screen looks.
const Date kPrimeiro(1980, 1, 1);

std::string DiaEMes(Date dia) { return dia.Brazil().substr(0, 5); }

}  // namespace

const Periodo TfmPainel::kEmissao{kPrimeiro, Date(2050, 12, 31)};

// --- Balances.

void TfmPainel::LeSaldosDasContas() {
  saldos_ = LeSaldos(Tabela.IBDatabase(),
                     ForCompanies(SaldosDasContas(std::string("CONTACOR.") + kBaixado, Today(), Today()),
                                  "CONTACOR", false, "ORDER BY 1"));
  for (const SaldoConta& conta : saldos_) {
    Value linha[] = {conta.conta, conta.descricao, conta.valor};
    TbSaldos.AppendRow(linha);
  }
}

Currency TfmPainel::SaldoDeHoje() const {
  Currency soma;
  for (const SaldoConta& conta : saldos_) soma += conta.valor;
  return soma;
}

TfmPainel::PorDia TfmPainel::MovimentoPorDia() const {
  const std::string sql = "SELECT CONTACOR.DT_CONT, " + Soma(CreditoOuDebito("CONTACOR")) +
                          " FROM {CADCONTA} CADCONTA JOIN {CONTACOR} CONTACOR ON CONTACOR.CONTA = "
                          "CADCONTA.CONTA WHERE CADCONTA.IMP_FLUXO = 'S' AND CONTACOR." +
                          kBaixado + WhereBetween("CONTACOR.DT_CONT", Today().AddDays(1 - kDias), Today()) +
                          " GROUP BY CONTACOR.DT_CONT";
  PorDia dias;
  ForEach(ForCompanies(sql, "CONTACOR", false),
          [&](std::span<Value> v) { dias[v[0].AsDate()] += SomaDe(v[1]); });
  return dias;
}

// --- Titles.

TfmPainel::Abertos TfmPainel::LeAbertos(const std::string& sql) const {
  Abertos dias;
  ForEach(ForCompanies(sql, "", false), [&](std::span<Value> v) {
    dias[v[0].AsDate()] = {v[1].AsInteger(), SomaDe(v[2])};
  });
  return dias;
}

void TfmPainel::LeFluxo() {
  const auto abertos = [&](const std::string& tabela, const std::string& vence, const std::string& aberto,
                           const std::string& mais) {
    return LeAbertos("SELECT " + vence + ", COUNT(*), " + Soma(aberto) + " FROM {" + tabela + "} " + tabela +
                     " JOIN {TABSIT} TABSIT ON TABSIT.CODIGO = " + tabela + ".SITUACAO WHERE 1 = 1" +
                     WhereBetween(vence, kPrimeiro, Today().AddDays(kDias)) + kNoFluxo +
                     StatusDeTitulo(tabela, false) + mais + " GROUP BY 1");
  };
  const Abertos receber = abertos("RECEBER", kReceberVenceAberto, EmAbertoReceber(), kForaP),
                pagar = abertos("PAGTO", kPagarVenceAberto, EmAbertoPagar(), "");
  MostraPrazos(receber, pagar);
  MostraPosicao(receber, pagar);
}

void TfmPainel::MostraPrazos(const Abertos& receber, const Abertos& pagar) {
  const auto linha = [&](const std::string& prazo, const Periodo& periodo) {
    const auto soma = [&](const Abertos& abertos) {
      std::pair<int64_t, Currency> todos;
      for (const auto& [dia, do_dia] : abertos) {
        if (!periodo.Contem(dia)) continue;
        todos.first += do_dia.first;
        todos.second += do_dia.second;
      }
      return todos;
    };
    const auto [quantos_r, valor_r] = soma(receber);
    const auto [quantos_p, valor_p] = soma(pagar);
    Value valores[] = {
        prazo,      std::to_string(quantos_r), valor_r, std::to_string(quantos_p), valor_p, periodo.de,
        periodo.ate};
    TbPrazos.AppendRow(valores);
  };
  const Date hoje = Today(), fim = hoje.AddDays(kSemana - 1);
  linha("Vencidos", {kPrimeiro, hoje.AddDays(-1)});
  linha("Até " + DiaEMes(fim), {hoje, fim});
}

void TfmPainel::MostraPosicao(const Abertos& receber, const Abertos& pagar) {
  const Currency saldo = SaldoDeHoje();
  PorDia movimento = MovimentoPorDia(), previsto;
  for (const auto& [dia, do_dia] : receber) previsto[dia] += do_dia.second;
  for (const auto& [dia, do_dia] : pagar) previsto[dia] -= do_dia.second;

  // Back from today, then on from it.
  const Date hoje = Today();
  std::array<Value, kPontos> foi{}, sera{};
  Currency corrente = saldo;
  for (int i = 0; i <= kDias; ++i) {
    foi[static_cast<std::size_t>(kDias - i)] = corrente;
    corrente -= movimento[hoje.AddDays(-i)];
  }
  MenorSaldo menor(saldo, hoje);
  corrente = saldo;
  for (int i = 0; i <= kDias; ++i) {
    const Date dia = hoje.AddDays(i);
    corrente += previsto[dia];
    menor.Soma(dia, previsto[dia]);
    sera[static_cast<std::size_t>(kDias + i)] = corrente;
  }
  for (int i = 0; i < kPontos; ++i) {
    const auto n = static_cast<std::size_t>(i);
    Value linha[] = {hoje.AddDays(i - kDias), foi[n], sera[n]};
    TbLinha.AppendRow(linha);
  }
  const auto anexa = [this](const char* figura, Currency valor, Date dia) {
    Value linha[] = {figura, valor, dia};
    TbPosicao.AppendRow(linha);
  };
  anexa("Saldo", saldo, hoje);
  anexa("Menor saldo previsto", menor.Valor(), menor.Dia());
}

// --- Lines of statements, as the workbench counts them.

void TfmPainel::LeLinhas() {
  const std::string sql =
      "SELECT CADCONTA.CONTA, MIN(CADCONTA.DESCRICAO), COUNT(*), MIN(EXTRATO.DT_CONT), MAX(EXTRATO.DT_CONT) "
      "FROM {CADCONTA} CADCONTA JOIN {EXTRATO} EXTRATO ON CASE WHEN EXTRATO.CONCILIADO = 'N' THEN "
      "EXTRATO.CONTA END = CADCONTA.CONTA WHERE EXTRATO.DT_CONT IS NOT NULL GROUP BY CADCONTA.CONTA";
  ForEach(ForCompanies(sql, "EXTRATO", false, "ORDER BY 1"),
          [this](std::span<Value> v) { TbLinhas.AppendRow(v); });
}

// --- Cheques, as their report counts them.

void TfmPainel::LeCheques() {
  const Date hoje = Today(), segunda = hoje.AddDays(-((hoje.WeekDay() + 6) % 7)),
             domingo = segunda.AddDays(6);
  const auto linha = [this](const std::string& prazo, const Periodo& dias) {
    const auto soma = [](const char* tipo) {
      const std::string caso = std::string("CASE WHEN CHEQUE.TIPO = '") + tipo + "' THEN ";
      return "COUNT(" + caso + "1 END), " + Soma(caso + "CHEQUE.VALOR END");
    };
    const std::string sql = "SELECT " + soma("R") + ", " + soma("P") +
                            " FROM {CHEQUE_PRE} CHEQUE WHERE CHEQUE.STATUS = 'P'" +
                            WhereBetween("CHEQUE.VENCIMENTO", dias.de, dias.ate) +
                            WhereBetween("CHEQUE.EMISSAO", kEmissao.de, kEmissao.ate);
    ForEach(ForCompanies(sql, "CHEQUE_PRE", false), [&](std::span<Value> v) {
      Value valores[] = {prazo,        v[0].AsString(), SomaDe(v[1]), v[2].AsString(),
                         SomaDe(v[3]), dias.de,         dias.ate};
      TbCheques.AppendRow(valores);
    });
  };
  linha("Hoje", {hoje, hoje});
  linha(DiaEMes(segunda) + " a " + DiaEMes(domingo), {segunda, domingo});
}

}  // namespace orv
