// The account statement: a hundred thousand movements of one account with their people and the titles that
// they settled, beside the bare fetch of the same rows joined in one statement; memory; and how it grows.
#include <cstdlib>
#include <iostream>

#include "bench/statement_screen.h"
#include "frame/module.h"
#include "toolkit/database.h"
#include "toolkit/value.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 3;
constexpr int64_t kWanted = 100000;
const char* const kJoined =
    "SELECT M.BANCO, M.CONTA, B.NOME_BANCO, M.VALOR, M.DT_LAN, M.DT_VENCTO, M.DOCTO, M.LANCAMENTO, "
    "M.OBSERVACAO, "
    "M.GRUPO, M.PENDENTE, G.CODIGO, G.DESCRICAO, M.OPERACAO, M.HISTORICO, H.DESCRICAO, M.DT_CONT, A.EMPRESA, "
    "A.AGENCIA, M.TIPO, A.LIMITE, RB.VALOR_PAGO, RB.DESCONTO + RB.DESCONTO2 + RB.DESCONTO3, RB.JUROS, "
    "RB.VAL_DEV, "
    "RB.OBS, RB.DOCTO, R.NUMERO, R.CODCLI, R.DT_EMISSAO, R.DT_VENCTO, R.VALOR2, R.OBS, R.CLASSE, RE.NOME, "
    "RE.CNPJ, "
    "RE.CONTAC, RE.CONTAD, RG.DESCRICAO, PB.VAL_PAG, PB.VAL_DEV, PB.JURO, PB.DESCONTO, PB.OBS, PB.DOCTO, "
    "P.NUM_AP, "
    "P.DUPLI, P.CODCRE, P.HISTORICO, P.OBS, P.DT_VEN, P.DT_EMI, P.VALOR, P.NUM_OS, PE.NOME, PE.CNPJ, "
    "PE.CONTAC, "
    "PE.CONTAD, PG.DESCRICAO, PH.DESCRICAO FROM CONTACOR_001 M LEFT JOIN SUBGRUPO_001 G ON G.CODIGO = "
    "M.GRUPO LEFT "
    "JOIN CADBAN_001 B ON B.BANCO = M.BANCO LEFT JOIN HISTCP_001 H ON H.HISTORICO = M.HISTORICO INNER JOIN "
    "CADCONTA_001 A ON A.CONTA = M.CONTA LEFT JOIN RECEBERB_001 RB ON RB.LANCAMENTO = M.LANCAMENTO LEFT JOIN "
    "RECEBER_001 R ON R.NUMERO = RB.NUMERO LEFT JOIN ENTIDADE_001 RE ON RE.CODCLI = R.CODCLI LEFT JOIN "
    "SUBGRUPO_001 "
    "RG ON RG.CODIGO = R.CLASSE LEFT JOIN PAGTO1_001 PB ON PB.LANCAMENTO = M.LANCAMENTO LEFT JOIN PAGTO_001 "
    "P ON "
    "P.NUM_AP = PB.NUM_AP LEFT JOIN ENTIDADE_001 PE ON PE.CODCLI = P.CODCRE LEFT JOIN SUBGRUPO_001 PG ON "
    "PG.CODIGO = "
    "P.NUM_OS LEFT JOIN HISTCP_001 PH ON PH.HISTORICO = P.HISTORICO WHERE M.CONTA = ";

void OneAccount(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  const std::string account =
      db->Scalar("SELECT FIRST 1 CONTA FROM CONTACOR_001 GROUP BY CONTA ORDER BY COUNT(*) DESC").AsString();
  const Date last = Date::ParseNeutral(kToday);
  const Date from = db->Scalar("SELECT FIRST 1 SKIP " + std::to_string(kWanted) +
                               " DT_CONT FROM CONTACOR_001 WHERE CONTA = " + Quote(account) +
                               " AND DT_CONT <= '" + last.Sql() + "' ORDER BY DT_CONT DESC")
                        .AsDate();
  const std::string sql = kJoined + Quote(account) + " AND M.DT_CONT BETWEEN '" + from.Sql() + "' AND '" +
                          last.Sql() + "' ORDER BY 17, 8";
  Best bare, gathering;
  for (int i = 0; i < kRuns; ++i) {
    Nothing nothing;
    bare.Take(Measure([&] { db->Fetch(sql, nothing); }));
  }
  db->CommitRetaining();
  int64_t rows = 0, titles = 0;
  {
    StatementScreen statement(house, "TfmRelCC");
    statement.Set("RelConta", account);
    statement.Set("CbFinanceiro", "true");
    statement.Period(from, last);
    for (int i = 0; i < kRuns; ++i) gathering.Take(Measure([&] { statement.Gather(); }));
    rows = statement.Count("TbRelatorio");
    titles = statement.Count("TbFinan");
  }
  const std::string of =
      Number(static_cast<double>(rows)) + " movements, " + Number(static_cast<double>(titles)) + " titles";
  Print("bare fetch of an account's movements with titles", bare.Cpu(), "s", of);
  Print("the account statement of them (3 x bare)", gathering.Cpu(), Bound::AtMost, 3 * bare.Cpu(), "s",
        Number(gathering.Wall()) + " s by the clock");

  // The engine keeps what a statement took for the next ones, so another run of it comes first.
  StatementScreen statement(house, "TfmRelCC");
  statement.Set("RelConta", account);
  statement.Set("CbFinanceiro", "true");
  statement.Period(last, last);
  statement.Gather();
  statement.Period(from, last);
  // The titles' bytes count for the movements' rows.
  PrintMemory(statement, {"TbRelatorio", "TbFinan"});
  PrintPages(statement);
}

// All accounts of the cash flow, from ever earlier days.
void Growth(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  const Date last = Date::ParseNeutral(kToday);
  StatementScreen statement(house, "TfmRelCC");
  statement.Set("RgTipo", "1");
  statement.Set("CbFinanceiro", "true");
  double each_of_many = 0;
  for (const int64_t wanted : {10'000, 30'000, 100'000, 300'000, 1'000'000}) {
    const Value day =
        db->Scalar("SELECT FIRST 1 SKIP " + std::to_string(wanted) +
                   " DT_CONT FROM CONTACOR_001 WHERE DT_CONT <= '" + last.Sql() + "' ORDER BY DT_CONT DESC");
    db->CommitRetaining();
    statement.Period(day.IsNull() ? Date(2000, 1, 1) : day.AsDate(), last);
    Best best;
    for (int i = 0; i < (wanted > 100'000 ? 1 : 2); ++i) best.Take(Measure([&] { statement.Gather(); }));
    const auto rows = static_cast<double>(statement.Count("TbRelatorio"));
    const double each = best.Cpu() / rows * 1e6;
    const std::string what = "the statement of " + Number(rows) + " movements";
    const std::string clock = Number(best.Wall()) + " s by the clock";
    // The balance before a short period is of many movements, which a short report has to bear.
    if (each_of_many == 0) {
      Print(what, each, "us/row", clock);
    } else {
      Print(what + " (1.3 x above)", each, Bound::AtMost, 1.3 * each_of_many, "us/row", clock);
    }
    if (wanted >= 100'000) each_of_many = each;
  }
}

int Run() {
  const Module module("orvCC");
  const auto house = House(260);
  OneAccount(house);
  Growth(house);
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
