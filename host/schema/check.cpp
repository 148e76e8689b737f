#include "host/schema/check.h"

#include <string_view>

#include "host/data/attachment.h"
#include "host/schema/schema.h"
#include "host/schema/tables.h"
#include "toolkit/text.h"

namespace orv {

namespace {

constexpr std::size_t kMost = 20;

// A kind of contradiction: its rows, and the line that tells one. In the statement {X} is the company's
// table,
// {*X ... } a clause that is repeated for the table of each company, joined by OR. In the line %1, %2 ... are
// the row's columns.
struct Rule {
  const char* sql;
  const char* line;
};

const Rule kRules[] = {
    // Movements.
    {"SELECT M.LANCAMENTO, M.CONTA FROM {CONTACOR} M WHERE NOT EXISTS (SELECT 1 FROM {CADCONTA} C WHERE "
     "C.CONTA = "
     "M.CONTA)",
     "lançamento %1: a conta \"%2\" não existe."},
    {"SELECT M.LANCAMENTO, M.GRUPO FROM {CONTACOR} M LEFT JOIN {SUBGRUPO} S ON (S.CODIGO = M.GRUPO) WHERE "
     "S.CODIGO "
     "IS NULL",
     "lançamento %1: a classe \"%2\" não existe."},
    {"SELECT M.LANCAMENTO, M.GRUPO FROM {CONTACOR} M INNER JOIN {SUBGRUPO} S ON (S.CODIGO = M.GRUPO) WHERE "
     "S.TP_CONTA = 'T'",
     "lançamento %1: a classe \"%2\" é do tipo título."},
    {"SELECT LANCAMENTO, DOCTO, CONTA, OPERACAO, COUNT(*) FROM {CONTACOR} GROUP BY LANCAMENTO, DOCTO, CONTA, "
     "OPERACAO HAVING COUNT(*) > 1",
     "lançamento %1, documento \"%2\", conta \"%3\", operação \"%4\": gravado %5 vezes."},
    {"SELECT LANCAMENTO FROM {CONTACOR} WHERE TIPO = 'TR' GROUP BY LANCAMENTO HAVING SUM(CASE WHEN OPERACAO "
     "= '+' "
     "THEN VALOR ELSE -VALOR END) <> 0",
     "transferência %1: a saída e a entrada não se igualam."},
    {"SELECT LANCAMENTO, LANC_CON FROM {CONTACOR} WHERE PENDENTE = 'S' AND LANC_CON > ''",
     "lançamento %1: pendente, mas com a conciliação %2."},

    // Statement against ledger.
    {"SELECT E.LANCTO, E.CONTA FROM {EXTRATO} E WHERE E.CONCILIADO = 'S' AND COALESCE(E.LANC_CON, '') = ''",
     "linha de extrato %1 da conta %2: conciliada sem número de conciliação."},
    {"SELECT E.LANCTO, E.LANC_CON, E.CONTA FROM {EXTRATO} E WHERE E.CONCILIADO = 'S' AND E.LANC_CON > '' AND "
     "NOT "
     "EXISTS (SELECT 1 FROM {CONTACOR} M WHERE M.LANC_CON = E.LANC_CON AND M.CONTA = E.CONTA)",
     "linha de extrato %1: nenhum lançamento da conta %3 tem a conciliação %2."},
    {"SELECT E.LANCTO, E.LANC_CON FROM {EXTRATO} E WHERE E.LANC_CON > '' AND (E.CONCILIADO <> 'S' OR "
     "E.CONCILIADO "
     "IS NULL)",
     "linha de extrato %1: não conciliada, mas com a conciliação %2."},
    {"SELECT E.LANC_CON, E.CONTA, E.SOMA, M.SOMA FROM (SELECT LANC_CON, CONTA, SUM(CASE WHEN OPERACAO = 'D' "
     "THEN "
     "-VALOR ELSE VALOR END) AS SOMA FROM {EXTRATO} WHERE CONCILIADO = 'S' AND LANC_CON > '' GROUP BY "
     "LANC_CON, "
     "CONTA) E INNER JOIN (SELECT LANC_CON, CONTA, SUM(CASE WHEN OPERACAO = '-' THEN -VALOR ELSE VALOR END) "
     "AS SOMA "
     "FROM {CONTACOR} WHERE LANC_CON > '' GROUP BY LANC_CON, CONTA) M ON (M.LANC_CON = E.LANC_CON AND "
     "M.CONTA = "
     "E.CONTA) WHERE E.SOMA <> M.SOMA",
     "conciliação %1 da conta %2: o extrato soma %3 e os lançamentos somam %4."},

    {"SELECT A.ARQUIVO, A.PARADA, A.CONTA FROM {ARQUIVO_EXTRATO} A WHERE A.PARADA > 0 AND EXISTS (SELECT 1 "
     "FROM {EXTRATO} E WHERE E.ARQUIVO = A.ARQUIVO AND E.CONTA = A.CONTA)",
     "arquivo %1: interrompido na linha %2, conta %3; falta carregar o resto."},

    // Receivables.
    {"SELECT T.NUMERO, T.VALOR_PAGO, T.SOMA FROM (SELECT R.NUMERO, COALESCE(R.VALOR_PAGO, 0) AS VALOR_PAGO, "
     "COALESCE((SELECT SUM(B.VALOR_PAGO) FROM {RECEBERB} B WHERE B.NUMERO = R.NUMERO), 0) AS SOMA FROM "
     "{RECEBER} R) T "
     "WHERE T.VALOR_PAGO <> T.SOMA",
     "título a receber %1: pago %2, mas as baixas somam %3."},
    {"SELECT NUMERO, VALOR2 + JUROS - VALOR_PAGO - VAL_DEV - DESCONTO FROM {RECEBER} WHERE VALOR2 + JUROS - "
     "VALOR_PAGO - VAL_DEV - DESCONTO < 0",
     "título a receber %1: baixado além do valor, saldo %2."},
    {"SELECT B.NUMERO, B.LANCAMENTO FROM {RECEBERB} B WHERE NOT EXISTS (SELECT 1 FROM {RECEBER} R WHERE "
     "R.NUMERO = "
     "B.NUMERO)",
     "baixa do lançamento %2: o título a receber %1 não existe."},
    {"SELECT B.NUMERO, B.LANCAMENTO FROM {RECEBERB} B WHERE B.VALOR_PAGO > 0 AND B.LANCAMENTO > '' AND NOT "
     "({*EXISTS "
     "(SELECT 1 FROM {CONTACOR} M WHERE M.LANCAMENTO = B.LANCAMENTO)*}) AND NOT EXISTS (SELECT 1 FROM "
     "{RECEBERB} X "
     // A run that an acquirer's chargebacks bring to zero or less leaves no movement.
     "WHERE X.LANCAMENTO = B.LANCAMENTO AND X.VALOR_PAGO = 0 AND X.JUROS > 0)",
     "baixa do título a receber %1: o lançamento %2 não existe."},
    {"SELECT T.NUMERO, T.CLASSE FROM {RECEBER} T INNER JOIN {SUBGRUPO} S ON (S.CODIGO = T.CLASSE) WHERE "
     "S.TP_CONTA = "
     "'T'",
     "título a receber %1: a classe \"%2\" é do tipo título."},

    // Payables.
    {"SELECT T.NUM_AP, T.VAL_PAG, T.SOMA FROM (SELECT P.NUM_AP, COALESCE(P.VAL_PAG, 0) AS VAL_PAG, "
     "COALESCE((SELECT SUM(B.VAL_PAG) FROM {PAGTO1} B WHERE B.NUM_AP = P.NUM_AP), 0) AS SOMA FROM {PAGTO} P) "
     "T WHERE "
     "T.VAL_PAG <> T.SOMA",
     "título a pagar %1: pago %2, mas as baixas somam %3."},
    {"SELECT NUM_AP, VALOR + JUROS - VAL_PAG - VAL_DEV - DESCONTO FROM {PAGTO} WHERE VALOR + JUROS - VAL_PAG "
     "- "
     "VAL_DEV - DESCONTO < 0",
     "título a pagar %1: baixado além do valor, saldo %2."},
    {"SELECT B.NUM_AP, B.LANCAMENTO FROM {PAGTO1} B WHERE NOT EXISTS (SELECT 1 FROM {PAGTO} P WHERE P.NUM_AP "
     "= "
     "B.NUM_AP)",
     "baixa do lançamento %2: o título a pagar %1 não existe."},
    {"SELECT B.NUM_AP, B.LANCAMENTO FROM {PAGTO1} B WHERE B.LANCAMENTO > '' AND NOT ({*EXISTS (SELECT 1 FROM "
     "{CONTACOR} M WHERE M.LANCAMENTO = B.LANCAMENTO)*})",
     "baixa do título a pagar %1: o lançamento %2 não existe."},
    {"SELECT T.NUM_AP, T.NUM_OS FROM {PAGTO} T INNER JOIN {SUBGRUPO} S ON (S.CODIGO = T.NUM_OS) WHERE "
     "S.TP_CONTA = "
     "'T'",
     "título a pagar %1: a classe \"%2\" é do tipo título."},

    // Cheques. One handed over by another company has its movement there.
    {"SELECT C.NUMERO, C.CHAVE FROM {CHEQUE_PRE} C WHERE C.STATUS <> 'C' AND NOT ({*EXISTS (SELECT 1 FROM "
     "{CONTACOR} "
     "M WHERE M.LANCAMENTO = C.CHAVE AND M.DOCTO = C.NUMERO)*})",
     "cheque %1: o lançamento %2 não existe."},
    {"SELECT C.NUMERO, C.CHAVE FROM {CHEQUE_PRE} C WHERE C.STATUS = 'C' AND EXISTS (SELECT 1 FROM {CONTACOR} "
     "M WHERE "
     "M.LANCAMENTO = C.CHAVE AND M.DOCTO = C.NUMERO)",
     "cheque %1: cancelado, mas o lançamento %2 continua."},
    {"SELECT C.NUMERO, C.CHAVE FROM {CHEQUE_PRE} C WHERE C.STATUS = 'B' AND EXISTS (SELECT 1 FROM {CONTACOR} "
     "M WHERE "
     "M.LANCAMENTO = C.CHAVE AND M.DOCTO = C.NUMERO AND M.PENDENTE NOT IN ('N', 'C'))",
     "cheque %1: baixado, mas o lançamento %2 está pendente."},
    {"SELECT NUMERO, CHAVE FROM {CHEQUE_PRE} WHERE STATUS = 'B' AND DT_BAIXA IS NULL",
     "cheque %1, lançamento %2: baixado sem data de baixa."},
    {"SELECT C.NUMERO, C.VALOR, M.LANCAMENTO, M.VALOR FROM {CHEQUE_PRE} C INNER JOIN {CONTACOR} M ON "
     "(M.LANCAMENTO = "
     "C.CHAVE AND M.DOCTO = C.NUMERO) WHERE C.STATUS <> 'C' AND M.VALOR <> C.VALOR",
     "cheque %1 de %2: o lançamento %3 é de %4."},

    // Accounting, under the number of a movement, of a clearing, or of a run that left no movement.
    {"SELECT DISTINCT A.LANCAMENTO FROM {CONTABIL} A WHERE NOT EXISTS (SELECT 1 FROM {CONTACOR} M WHERE "
     "M.LANCAMENTO "
     "= A.LANCAMENTO) AND NOT EXISTS (SELECT 1 FROM {CONTACOR} N WHERE N.LANC_CON = A.LANCAMENTO) AND NOT "
     "EXISTS "
     "(SELECT 1 FROM {RECEBERB} B WHERE B.LANCAMENTO = A.LANCAMENTO)",
     "contabilização %1: não há lançamento nem conciliação com este número."},
};

// The sequences, with the greatest number that the tables hold. Numbers typed by hand needn't be numbers.
struct Numbering {
  const char *table, *column, *source;
};
const Numbering kNumberings[] = {
    {"CONTACOR", "LANCAMENTO", "SELECT LANCAMENTO AS N FROM {CONTACOR}"},
    {"CONTACOR", "LANC_CON", "SELECT LANC_CON AS N FROM {EXTRATO} WHERE LANC_CON > ''"},
    {"EXTRATO", "LANCTO", "SELECT LANCTO AS N FROM {EXTRATO}"},
    {"PAGTO", "NUM_AP", "SELECT NUM_AP AS N FROM {PAGTO}"},
};

std::string Localize(std::string_view text, std::string_view emp_pat) {
  std::string sql;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t open = text.find('{', at);
    if (open == std::string_view::npos) return sql.append(text.substr(at));
    const std::size_t close = text.find('}', open);
    sql.append(text.substr(at, open - at)).append(text.substr(open + 1, close - open - 1)).append(emp_pat);
    at = close + 1;
  }
  return sql;
}

// The statement for one company, its repeated clause for all of them.
std::string StatementFor(std::string_view text, std::string_view emp_pat,
                         const std::vector<std::string>& all) {
  const std::size_t open = text.find("{*");
  if (open == std::string_view::npos) return Localize(text, emp_pat);
  const std::size_t close = text.find("*}", open);
  std::vector<std::string> clauses;
  for (const std::string& other : all)
    clauses.push_back(Localize(text.substr(open + 2, close - open - 2), other));
  return Localize(text.substr(0, open), emp_pat) + Join(clauses, " OR ") +
         Localize(text.substr(close + 2), emp_pat);
}

std::string Fill(std::string_view line, const std::vector<Value>& row) {
  std::string text;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] != '%' || i + 1 == line.size()) {
      text += line[i];
      continue;
    }
    const Value& value = row.at(static_cast<std::size_t>(line[++i] - '1'));
    text += value.Kind() == ValueKind::Currency ? value.AsCurrency().Brazil() : value.AsString();
  }
  return text;
}

// Takes what fits into the report and stops the fetch there.
class FirstRows : public RowSink {
 public:
  void Columns(const std::vector<Column>&) override {}
  bool Row(std::span<Value> values) override {
    rows.emplace_back(values.begin(), values.end());
    return rows.size() <= kMost;
  }
  std::vector<std::vector<Value>> rows;
};

}  // namespace

std::vector<std::string> CheckData(Attachment& db) {
  std::vector<std::string> lines;
  const std::vector<std::string> companies = CompanySuffixes(db);
  for (const std::string& company : companies) {
    const std::string prefix = "Empresa " + company + ", ";
    for (const Rule& rule : kRules) {
      FirstRows found;
      db.Fetch(StatementFor(rule.sql, company, companies), found);
      for (std::size_t i = 0; i < found.rows.size() && i < kMost; ++i)
        lines.push_back(prefix + Fill(rule.line, found.rows[i]));
      if (found.rows.size() > kMost) lines.push_back(prefix + "e mais ocorrências como a anterior.");
    }
    for (const Numbering& n : kNumberings) {
      const Value greatest = db.Scalar("SELECT MAX(CAST(N AS BIGINT)) FROM (" + Localize(n.source, company) +
                                       ") WHERE N SIMILAR TO '[0-9]+'");
      const Value next =
          db.Scalar("SELECT GEN_ID(" + SequenceName(n.table, n.column, company) + ", 0) FROM RDB$DATABASE");
      if (!greatest.IsNull() && next.AsInteger() < greatest.AsInteger())
        lines.push_back(prefix + "numeração de " + n.table + "." + n.column + ": está em " + next.AsString() +
                        ", mas já existe o número " + greatest.AsString() + ".");
    }
  }
  return lines;
}

}  // namespace orv
