#include "rules/saldo.h"

#include <unordered_map>

#include "rules/periodo.h"
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

constexpr const char* kDobras = "SELECT VEZES FROM SALDO_DOBRA";

// Without the name of a table.
std::string Coluna(std::string_view coluna) { return std::string(coluna.substr(coluna.find('.') + 1)); }

std::string Literal(Date dia) { return "'" + dia.Sql() + "'"; }

// The month of a day, of which the days up to that one count.
struct Mes {
  explicit Mes(Date ate) : dia(ate), primeiro(ate.FirstOfMonth()), ultimo(ate.LastOfMonth()) {}
  bool Inteiro() const { return dia == ultimo; }
  Periodo Comeco() const { return {primeiro, dia}; }
  Periodo Resto() const { return {dia.AddDays(1), ultimo}; }
  // Whether the rest has fewer movements, so that the whole month without it is read faster.
  bool MelhorSemOResto(Date hoje) const {
    return dia >= hoje.AddDays(-1) || ultimo.Days() - dia.Days() < dia.Days() - primeiro.Days();
  }

  Date dia, primeiro, ultimo;
};

// The months that compare so with one, "" for all of them.
std::string Meses(const Livro& livro, std::string_view coluna, const char* sinal, Date mes) {
  const std::string data = Coluna(coluna);
  const char* const tipo = data == "DT_LAN" ? "L" : data == "DT_VENCTO" ? "V" : "C";
  ORV_ASSERT(*tipo != 'C' || data == "DT_CONT");
  return std::string("SELECT CONTA, ") + livro.situacao + ", OPERACAO, VALOR, QUANTIDADE, MES AS " + data +
         " FROM {" + livro.saldos + "} WHERE DATA = '" + tipo + "'" +
         (*sinal == 0 ? "" : std::string(" AND MES ") + sinal + " " + Literal(mes));
}

// The rows of some days, added or, with "-", taken away.
std::string Dias(const Livro& livro, std::string_view coluna, const Periodo& dias, const std::string& sinal) {
  const std::string data = Coluna(coluna);
  return std::string("SELECT CONTA, ") + livro.situacao + ", OPERACAO, " + sinal + "VALOR, " + sinal + "1, " +
         data + " FROM {" + livro.tabela + "} WHERE " + data + " BETWEEN " + Literal(dias.de) + " AND " +
         Literal(dias.ate);
}

std::string Item(const Livro& livro, const std::vector<std::string>& partes) {
  return "(" + Join(partes, " UNION ALL ") + ") " + livro.tabela;
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

std::string SomaSe(std::string_view condicao) {
  const std::string caso = "CASE WHEN " + std::string(condicao) + " THEN ";
  return "CASE WHEN SUM(" + caso + "QUANTIDADE END) <> 0 THEN " + Soma(caso + "VALOR END") + " END";
}

std::string SaldosAte(const Livro& livro, std::string_view coluna, Date dia, Date hoje) {
  const Mes mes(dia);
  if (mes.Inteiro()) return Item(livro, {Meses(livro, coluna, "<=", mes.primeiro)});
  if (mes.MelhorSemOResto(hoje))
    return Item(livro, {Meses(livro, coluna, "<=", mes.primeiro), Dias(livro, coluna, mes.Resto(), "-")});
  return Item(livro, {Meses(livro, coluna, "<", mes.primeiro), Dias(livro, coluna, mes.Comeco(), "")});
}

std::string SaldosApos(const Livro& livro, std::string_view coluna, Date dia, Date hoje) {
  const Mes mes(dia);
  if (mes.Inteiro()) return Item(livro, {Meses(livro, coluna, ">", mes.primeiro)});
  if (mes.MelhorSemOResto(hoje))
    return Item(livro, {Meses(livro, coluna, ">", mes.primeiro), Dias(livro, coluna, mes.Resto(), "")});
  return Item(livro, {Meses(livro, coluna, ">=", mes.primeiro), Dias(livro, coluna, mes.Comeco(), "-")});
}

std::string SaldosDeSempre(const Livro& livro) { return Item(livro, {Meses(livro, "DT_CONT", "", {})}); }

std::string MovimentosAte(const Livro& livro, std::string_view coluna, Date dia) {
  return Item(livro, {std::string("SELECT M.*, 1 AS QUANTIDADE FROM {") + livro.tabela + "} M WHERE M." +
                      Coluna(coluna) + " <= " + Literal(dia)});
}

std::vector<std::vector<Value>> LinhasDeSaldo(TOrvDatabase& db, const std::string& sql) {
  // A statement sees what is committed while it runs: of a fold, rows that are gone beside the one that
  // stands for them.
  for (Value antes = db.Scalar(kDobras);;) {
    auto linhas = db.Rows(sql);
    Value depois = db.Scalar(kDobras);
    if (depois == antes) return linhas;
    antes = std::move(depois);
  }
}

Currency TotalDeSaldo(TOrvDatabase& db, const std::string& sql) {
  Currency total;
  for (const auto& linha : LinhasDeSaldo(db, sql)) total += SomaDe(linha[0]);
  return total;
}

std::string SaldosDasContas(const std::string& movimentos, Date ate, Date hoje, const std::string& contas) {
  return "SELECT CADCONTA.CONTA, CADCONTA.EMPRESA, CADCONTA.DESCRICAO, (SELECT CASE WHEN SUM(QUANTIDADE) <> "
         "0 THEN " +
         Soma(CreditoOuDebito("CONTACOR")) + " END FROM " + SaldosAte(kContaCorrente, "DT_CONT", ate, hoje) +
         " WHERE CONTACOR.CONTA = CADCONTA.CONTA AND " + movimentos +
         ") AS VALOR FROM {CADCONTA} CADCONTA WHERE CADCONTA.IMP_FLUXO = 'S'" + contas;
}

std::vector<SaldoConta> LeSaldos(TOrvDatabase& db, const std::string& sql) {
  std::vector<SaldoConta> saldos;
  std::unordered_map<std::string, std::size_t> onde;
  for (auto& row : LinhasDeSaldo(db, sql)) {
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
                        const std::string& de, const std::string& quantidade) {
  const std::string mes = "EXTRACT(YEAR FROM " + data + "), EXTRACT(MONTH FROM " + data + ")";
  const std::string quantos = "SUM(" + quantidade + ")";
  return "SELECT " + mes + ", " + quantos + ", " + Soma(credito) + " AS CREDITOS, " + Soma(debito) +
         " AS DEBITOS" + de + " GROUP BY " + mes + " HAVING " + quantos + " <> 0";
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
