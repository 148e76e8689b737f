// The home and the register of an account: their figures reckoned a second time, the screens that they open,
// and what each user sees of them.
#include "host/services/audit.h"
#include "host/services/users.h"
#include "tests/support/desk_test.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

class HomeTest : public DeskTest {
 protected:
  // The first value of a statement, as the screens show an amount.
  std::string Amount(const std::string& sql) { return Value(Db().Scalar(sql)).AsCurrency().Brazil(); }
  static std::string Shown(const std::string& neutral) { return Currency::ParseNeutral(neutral).Brazil(); }
  // What is open of titles that fall due between two days.
  std::string Receivable(const std::string& from, const std::string& to) {
    return Amount(
        "SELECT COALESCE(SUM(R.VALOR2 - R.VALOR_PAGO + R.JUROS - R.DESCONTO - R.VAL_DEV), 0) FROM "
        "RECEBER_001 "
        "R WHERE R.STATUS = 'N' AND R.SITUACAO <> 'P' AND R.VALOR2 - R.VALOR_PAGO + R.JUROS - R.DESCONTO - "
        "R.VAL_DEV > 0 AND R.SITUACAO IN (SELECT CODIGO FROM TABSIT_001 WHERE IMP_FLUXO = 'S') AND "
        "R.DT_VENCTO BETWEEN '" +
        from + "' AND '" + to + "'");
  }
  std::string Payable(const std::string& from, const std::string& to) {
    return Amount(
        "SELECT COALESCE(SUM(P.VALOR - P.VAL_PAG + P.JUROS - P.DESCONTO - P.VAL_DEV), 0) FROM PAGTO_001 P "
        "WHERE P.STATUS = 'N' AND P.VALOR - P.VAL_PAG + P.JUROS - P.DESCONTO > 0 AND P.SITUACAO IN (SELECT "
        "CODIGO FROM TABSIT_001 WHERE IMP_FLUXO = 'S') AND P.DT_VEN BETWEEN '" +
        from + "' AND '" + to + "'");
  }
  std::string Balance(const std::string& account, const std::string& until) {
    return Amount(
        "SELECT COALESCE(SUM(IIF(OPERACAO = '+', VALOR, -VALOR)), 0) FROM CONTACOR_001 WHERE CONTA " +
        account + " AND PENDENTE <> 'S' AND DT_CONT <= '" + until + "'");
  }
};

constexpr const char* kFlow = "IN (SELECT CONTA FROM CADCONTA_001 WHERE IMP_FLUXO = 'S')";

TEST_F(HomeTest, EachFigureIsThatOfTheTablesAndOfTheScreenThatItOpens) {
  // What is left out: a lost title, a situation that isn't of the cash flow, a settled line; a cheque of no
  // day of issue, which its report leaves out too.
  Put(Receber{.numero = "LOST", .dt_vencto = "11/10/2026", .valor2 = "7.01", .situacao = "P"});
  Put(Receber{.numero = "ALIEN", .dt_vencto = "11/10/2026", .valor2 = "7.02", .situacao = "ZZ"});
  Put(Cheque{
      .chave = "KX", .valor = "12.34", .emissao = "11/02/2026", .vencimento = "11/20/2026", .tipo = "P"});
  Put(Cheque{
      .chave = "KY", .valor = "1.10", .emissao = "11/02/2026", .vencimento = "11/17/2026", .tipo = "R"});
  Desk desk(database_, At{"TfmPainel"});
  ASSERT_EQ(desk.Messages(), "");

  // Accounts, each with its register.
  const auto accounts = desk.Read("TbSaldos");
  ASSERT_GT(accounts.size(), 2U);
  for (std::size_t i = 0; i < accounts.size(); ++i) {
    SCOPED_TRACE(accounts[i].at("Conta"));
    const std::string balance = Shown(accounts[i].at("Saldo"));
    EXPECT_EQ(balance, Balance("= '" + accounts[i].at("Conta") + "'", "2026-11-20"));
    desk.DoubleClick("GridSaldos", static_cast<int>(i), "Saldo");
    ASSERT_EQ(desk.Top(), "TfmRegistroConta") << desk.Messages();
    EXPECT_EQ(desk.Text("EdtConta"), accounts[i].at("Conta"));
    EXPECT_TRUE(desk.Caption("LbSaldo").starts_with("Saldo em 20/11/2026: " + balance + "."))
        << desk.Caption("LbSaldo");
    desk.Close();
    ASSERT_EQ(desk.Top(), "TfmPainel");
  }

  // All accounts: today, the lowest, the line.
  const auto position = desk.Read("TbPosicao");
  ASSERT_EQ(position.size(), 2U);
  EXPECT_EQ(Shown(position[0].at("Valor")), Balance(kFlow, "2026-11-20"));
  const auto line = desk.Read("TbLinha");
  ASSERT_EQ(line.size(), 61U);
  EXPECT_EQ(line[0].at("Dia") + line[60].at("Dia"), "2026-10-212026-12-20");
  for (const std::size_t i : {0U, 7U, 29U, 30U})
    EXPECT_EQ(Shown(line[i].at("Saldo")), Balance(kFlow, line[i].at("Dia"))) << i;
  EXPECT_EQ(line[30].at("Saldo"), position[0].at("Valor"));
  EXPECT_EQ(line[31].at("Saldo") + line[29].at("Previsto"), "--");
  const Currency now = Currency::ParseBrazil(Balance(kFlow, "2026-11-20"));
  Currency lowest = now;
  std::string when = "2026-11-20";
  for (std::size_t i = 30; i < line.size(); ++i) {
    const std::string day = line[i].at("Dia");
    const Currency expected = now + Currency::ParseBrazil(Receivable("2026-11-20", day)) -
                              Currency::ParseBrazil(Payable("2026-11-20", day));
    EXPECT_EQ(Shown(line[i].at("Previsto")), expected.Brazil()) << day;
    if (expected < lowest) lowest = expected, when = day;
  }
  EXPECT_EQ(Shown(position[1].at("Valor")) + " " + position[1].at("Dia"), lowest.Brazil() + " " + when);
  desk.DoubleClick("GridPosicao", 1, "Valor");
  ASSERT_EQ(desk.Top(), "TfmRelAnaliseFluxo") << desk.Messages();
  EXPECT_EQ(desk.Caption("LbMenor"),
            "Menor saldo: " + lowest.Brazil() + " em " + Date::ParseNeutral(when).Brazil() + ".");
  EXPECT_EQ(Shown(desk.Read("TbRelatorio").back().at("Saldo")), Shown(line[60].at("Previsto")));
  // Filters that were left there don't change what a figure opens.
  desk.Check("CbEmp", true);
  desk.Set("EdtSit", "'01'");
  desk.Open("TfmPainel");

  // Titles.
  const std::vector<std::array<std::string, 2>> periods = {{"1980-01-01", "2026-11-19"},
                                                           {"2026-11-20", "2026-11-26"}};
  for (std::size_t i = 0; i < periods.size(); ++i) {
    SCOPED_TRACE(periods[i][1]);
    const Row due = desk.Read("TbPrazos").at(i);
    EXPECT_EQ(Shown(due.at("Receber")), Receivable(periods[i][0], periods[i][1]));
    EXPECT_EQ(Shown(due.at("Pagar")), Payable(periods[i][0], periods[i][1]));
    desk.DoubleClick("GridPrazos", static_cast<int>(i), "Receber");
    ASSERT_EQ(desk.Top(), "TfmRelAnaliseFluxo") << desk.Messages();
    EXPECT_EQ(desk.Texts({"TotRec", "TotPag"}), Shown(due.at("Receber")) + "|" + Shown(due.at("Pagar")));
    EXPECT_EQ(std::to_string(desk.Read("TbDetalha").size()),
              std::to_string(std::stoi(due.at("QtdReceber")) + std::stoi(due.at("QtdPagar"))));
    desk.Close();
  }

  // Lines of statements.
  const auto lines = desk.Read("TbLinhas");
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(
      desk.Read("TbLinhas", {"Conta", "Linhas"}),
      ReplaceAll(Sql("SELECT CONTA, COUNT(*) FROM EXTRATO_001 WHERE CONCILIADO <> 'S' GROUP BY 1 ORDER BY 1"),
                 ";", "\n") +
          "\n");
  for (std::size_t i = 0; i < lines.size(); ++i) {
    desk.DoubleClick("GridLinhas", static_cast<int>(i), "Linhas");
    ASSERT_EQ(desk.Top(), "TFmConcilia") << desk.Messages();
    EXPECT_EQ(std::to_string(desk.Read("TbArq").size()), lines[i].at("Linhas"));
    desk.Page("TabSheet3");
    desk.Open("TfmPainel");
  }
  desk.CloseAll();

  // Cheques: the column says which.
  desk.Open("TfmPainel");
  const std::array<std::string, 2> days[] = {{"2026-11-20", "2026-11-20"}, {"2026-11-16", "2026-11-22"}};
  for (std::size_t i = 0; i < 2; ++i) {
    for (const auto& [kind, column] : {std::pair{"R", "Recebidos"}, std::pair{"P", "Emitidos"}}) {
      const Row good = desk.Read("TbCheques").at(i);
      const std::string which = std::string(" FROM CHEQUE_PRE_001 WHERE STATUS = 'P' AND TIPO = '") + kind +
                                "' AND VENCIMENTO BETWEEN '" + days[i][0] + "' AND '" + days[i][1] + "'";
      EXPECT_EQ(Shown(good.at(column)), Amount("SELECT COALESCE(SUM(VALOR), 0)" + which));
      EXPECT_EQ(good.at(std::string("Qtd") + column), Sql("SELECT COUNT(*)" + which));
      desk.DoubleClick("GridCheques", static_cast<int>(i), column);
      ASSERT_EQ(desk.Top(), "TfmRelContCheq") << desk.Messages();
      EXPECT_EQ(desk.End(), "idle");
      Currency sum;
      for (const Row& cheque : desk.Read("QryRelatorio")) sum += Currency::ParseNeutral(cheque.at("VALOR"));
      EXPECT_EQ(sum.Brazil(), Shown(good.at(column)));
      desk.Open("TfmPainel");
    }
  }
}

TEST_F(HomeTest, EachUserSeesHisPartsAndTheyAreReadAnewOnReturn) {
  {
    orv::Audit nobody(Db(), Clock(Date::ParseNeutral(kToday)), "", "");
    Users(Db(), nobody, PasswordCost::Least()).Grant("leo", {"TfmRelContCheq", "A"});
    Db().CommitRetaining();
  }
  const char* parts[] = {"Grafico",    "GridPosicao", "GridPrazos", "GridSaldos",
                         "GridLinhas", "GridCheques", "LbVazio"};
  const auto seen = [&](Desk& desk) {
    std::string text;
    for (const char* part : parts) text += desk.Visible(part) ? "1" : "0";
    return text;
  };
  Desk leo(database_, At{"TfmPainel", "leo"});
  EXPECT_EQ(seen(leo), "0000010");
  EXPECT_EQ(leo.Rows("TbSaldos") + leo.Rows("TbPrazos") + leo.Rows("TbLinhas") + leo.Rows("TbLinha"), "");
  Desk ana(database_, At{"TfmPainel"});
  EXPECT_EQ(seen(ana), "1111110");

  const std::string before = leo.Read("TbCheques", {"QtdEmitidos"});
  leo.Open("TfmRelContCheq");
  Put(Cheque{
      .chave = "KZ", .valor = "3.21", .emissao = "11/02/2026", .vencimento = "11/20/2026", .tipo = "P"});
  leo.Close();
  EXPECT_EQ(leo.Top(), "TfmPainel");
  EXPECT_NE(leo.Read("TbCheques", {"QtdEmitidos"}), before);
}

TEST_F(HomeTest, TheRegisterRunsSearchesAndOpensTheMovement) {
  Empty("CONTACOR_001 EXTRATO_001");
  const auto put = [&](const char* number, const char* docto, const char* day, const char* value,
                       const char* op, const char* pendente, const char* tied = "") {
    Put(Movimento{.lancamento = number,
                  .docto = docto,
                  .conta = "10250-1",
                  .dt_lan = day,
                  .dt_cont = day,
                  .dt_vencto = day,
                  .valor = value,
                  .operacao = op,
                  .observacao = std::string("Pagto de açúcar ") + number,
                  .pendente = pendente,
                  .lanc_con = tied});
  };
  put("000003", "NF 9", "11/18/2026", "1234.56", "-", "N", "C1");
  put("000001", "NF 7", "11/02/2026", "5000", "+", "C");
  put("000002", "NF 8", "11/02/2026", "80", "-", "S");
  put("000004", "NF 9", "11/25/2026", "10", "+", "N", "C2");
  Put(Extrato{.lancto = "L1", .conta = "10250-1", .valor = "1234.56", .conciliado = "S", .lanc_con = "C1"});
  Desk desk(database_, At{"TfmRegistroConta"});
  EXPECT_EQ(desk.Refused("BtConsulta"), "Selecione uma Conta. > EdtConta");
  desk.Fill({{"EdtConta", "10250-1"}});
  desk.Click("BtConsulta");
  EXPECT_EQ(desk.Caption("LbSaldo"),
            "Saldo em 20/11/2026: 3.765,44. Pendente: -80,00. Com o que está datado adiante: 3.775,44.");
  EXPECT_EQ(desk.Read("TbMovimentos", {"Lancamento", "Valor", "Saldo", "Situacao", "NoExtrato"}),
            "000001|5000.0000|5000.0000|C|N\n000002|-80.0000|5000.0000|S|N\n000003|-1234.5600|3765.4400|N|"
            "S\n000004|10.0000|3775.4400|N|N\n");
  EXPECT_EQ(desk.SetOf("TbMovimentos")["row"].Integer(), 3);
  for (const auto& [typed, found] :
       std::initializer_list<std::pair<const char*, const char*>>{{"nf 9", "000003 000004"},
                                                                  {"ACUCAR 1.234,56", "000003"},
                                                                  {"1234,5", "000003"},
                                                                  {"'; --", ""},
                                                                  {"", "000001 000002 000003 000004"}}) {
    desk.Set("EdtProcura", typed);
    EXPECT_EQ(Trim(desk.Column("TbMovimentos", "Lancamento")), found) << typed;
  }
  // One of two of a document.
  desk.DoubleClick("DBGrid1", 2, "Valor");
  EXPECT_EQ(desk.Messages(), "");
  EXPECT_EQ(desk.Top(), "TfmCC");
  EXPECT_EQ(desk.Texts({"EdtLancto", "EdtNumDoc", "EdtValor"}), "000003|NF 9|1.234,56");
}

}  // namespace
}  // namespace orv::test
