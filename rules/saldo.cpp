#include "rules/saldo.h"

#include <unordered_map>

#include "toolkit/text.h"

namespace orv {
namespace {

std::string De(std::string_view alias) { return alias.empty() ? "" : std::string(alias) + "."; }

// What meets no case is null, which costs a sum nothing.
std::string Lado(std::string_view alias, std::string_view condicao, char operacao) {
  std::string lado = "CASE WHEN " + De(alias) + "OPERACAO = '" + operacao + "'";
  if (!condicao.empty()) lado.append(" AND ").append(condicao);
  return lado + " THEN " + De(alias) + "VALOR END";
}

}  // namespace

std::string Creditos(const Livro& livro, std::string_view alias, std::string_view condicao) {
  return Lado(alias, condicao, livro.credito);
}

std::string Debitos(const Livro& livro, std::string_view alias, std::string_view condicao) {
  return Lado(alias, condicao, livro.debito);
}

std::string ComSinal(const Livro& livro, std::string_view alias, std::string_view condicao) {
  const std::string de = De(alias);
  const std::string valor = "CASE " + de + "OPERACAO WHEN '" + livro.credito + "' THEN " + de +
                            "VALOR WHEN '" + livro.debito + "' THEN -" + de + "VALOR END";
  return condicao.empty() ? valor : "CASE WHEN " + std::string(condicao) + " THEN " + valor + " END";
}

std::string CreditoOuDebito(std::string_view alias) {
  const std::string de = De(alias);
  return "COALESCE(CASE " + de + "OPERACAO WHEN '+' THEN " + de + "VALOR ELSE -" + de + "VALOR END, 0)";
}

std::string SaldosDasContas(const std::string& movimentos, const std::string& contas) {
  // A sum for each account reads its movements without sorting them.
  return "SELECT CADCONTA.CONTA, CADCONTA.EMPRESA, CADCONTA.DESCRICAO, (SELECT " +
         Soma(CreditoOuDebito("CONTACOR")) +
         " FROM {CONTACOR} CONTACOR WHERE CONTACOR.CONTA = CADCONTA.CONTA AND " + movimentos +
         ") AS VALOR FROM {CADCONTA} CADCONTA WHERE CADCONTA.IMP_FLUXO = 'S'" + contas;
}

std::vector<SaldoConta> LeSaldos(TOrvDatabase& db, const std::string& sql) {
  std::vector<SaldoConta> saldos;
  std::unordered_map<std::string, std::size_t> onde;
  for (auto& row : db.Rows(sql)) {
    if (row[3].IsNull()) continue;
    const auto [found, added] = onde.try_emplace(row[0].AsString(), saldos.size());
    if (added) saldos.push_back({row[0], row[1], row[2], Currency()});
    saldos[found->second].valor += SomaDe(row[3]);
  }
  return saldos;
}

const std::array<ReportField, 5> kSaldoPorMes{{{"Ano", FieldType::Integer},
                                               {"Mês", FieldType::Integer},
                                               {"Movimentos", FieldType::Integer},
                                               {"Créditos", FieldType::Currency},
                                               {"Débitos", FieldType::Currency}}};

std::string SaldoPorMes(const std::string& data, const std::string& credito, const std::string& debito,
                        const std::string& de) {
  const std::string mes = "EXTRACT(YEAR FROM " + data + "), EXTRACT(MONTH FROM " + data + ")";
  return "SELECT " + mes + ", COUNT(*), " + Soma(credito) + " AS CREDITOS, " + Soma(debito) + " AS DEBITOS" +
         de + " GROUP BY " + mes;
}

void CompletaMes(std::span<Value> mes) {
  mes[3] = SomaDe(mes[3]);
  mes[4] = SomaDe(mes[4]);
}

std::string ForaDeMedida(const Livro& livro) {
  return std::string("SELECT FIRST 5 ") + livro.chave + ", VALOR FROM {" + livro.tabela +
         "} WHERE VALOR > 999999999999.99 OR VALOR < -999999999999.99";
}

void ApontaForaDeMedida(UserInterface& user, TOrvDatabase& db, const std::string& sql) {
  std::vector<std::string> quais;
  for (const auto& registro : db.Rows(sql))
    quais.push_back(registro[0].AsString() + " (" + registro[1].AsCurrency().Brazil() + ")");
  if (quais.empty()) return;
  user.Note(NoteKind::Warning, "As somas contêm valores grandes demais. Corrija ou exclua os lançamentos: " +
                                   Join(quais, "; ") + ".");
}

Currency Total(TOrvDatabase& db, const std::string& sql) {
  Currency total;
  for (const auto& linha : db.Rows(sql)) total += SomaDe(linha[0]);
  return total;
}

}  // namespace orv
