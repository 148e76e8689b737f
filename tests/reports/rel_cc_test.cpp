// The account statement: what the filters let in, balances, groupings, people, titles, failures, drill-down.
#include "tests/reports/rel_cc_desk.h"
#include "tests/support/table.h"

namespace orv::test {
namespace {

class StatementTest : public RelCcTest {
 protected:
  StatementTest() { Clear(); }
  void Receivable(const std::string& number, const std::string& customer,
                  const std::string& company = "_001") {
    Put(Receber{.numero = number, .codcli = customer, .valor2 = "50"}, company);
  }
  void Received(const std::string& number, const std::string& movement, const std::string& paid = "50",
                const std::string& company = "_001") {
    Put(Receberb{.numero = number,
                 .lancamento = movement,
                 .valor_pago = paid,
                 .juros = 0,
                 .val_dev = 0,
                 .desconto = 1,
                 .desconto2 = "0.5",
                 .desconto3 = "0.25"},
        company);
  }
  void Payable(const std::string& number, const std::string& supplier) {
    Put(Pagto{.num_ap = number, .codcre = supplier, .dupli = "NF" + number, .valor = "70"});
  }
  void Paid(const std::string& number, const std::string& movement, const std::string& paid = "70") {
    Put(Pagto1{.num_ap = number, .lancamento = movement, .val_pag = paid});
  }
  // The other company has the account, too.
  void AccountOfBoth() { Put(Cadconta{}, "_002"); }
  std::string Name(const std::string& code) {
    return Sql(
        "SELECT CAST(SUBSTRING(NOME FROM 1 FOR 40) AS VARCHAR(40)) FROM ENTIDADE_001 WHERE CODCLI = '" +
        code + "'");
  }
};

TEST_F(StatementTest, AnAccountIsAskedFor) {
  Desk desk(database_, At{"TfmRelCC"});
  EXPECT_EQ(desk.Text("EdtDataDe") + desk.Text("edtDataAte"), "01/01/198031/12/2030");
  EXPECT_EQ(desk.EnabledOf({"RelCodBan", "PqBanco"}), "00");
  EXPECT_EQ(desk.Told("BitBtn29"), "Banco inexistente.");
  ASSERT_EQ(desk.End(), "waiting lookup");
  desk.Choose(kConta);
  EXPECT_EQ(desk.Text("RelConta") + "|" + desk.Text("RelCodBan") + "|" + desk.Text("RelDesBan"),
            "10250-1|901|BANCO DA SERRA");
  EXPECT_NE(desk.Text("Edit1"), "");
  // A bank without an account is left over from a report of all accounts.
  Fill(desk, {{"RgTipo", "1"}, {"RelConta", ""}});
  EXPECT_TRUE(desk.Enabled("RelCodBan"));
  Fill(desk, {{"RelCodBan", "902"}, {"RgTipo", "0"}});
  EXPECT_EQ(desk.Refused("BitBtn29"), "Conta inexistente. > RelConta");
  // Nothing is tested when a field is left, and an unknown code only finds nothing.
  EXPECT_EQ(Gathered(desk, {{"RgTipo", "1"}, {"RelConta", "77"}, {"EdtHistHistorico", "zz"}}, {"Lancamento"}),
            "");
  EXPECT_EQ(desk.Text("RelDesBan") + desk.Text("EdtDesHistorico"), "");
}

TEST_F(StatementTest, FiltersNarrowRowsAndBalance) {
  // Before the period: 100 in, 30 pending out, and 5 of an operation that is neither.
  Movement({.lancamento = "A", .dt_cont = "10/31/2026", .valor = "100", .operacao = "+", .grupo = "1101"});
  Movement({.lancamento = "B", .dt_cont = "10/15/2026", .valor = "30", .pendente = "S"});
  Movement({.lancamento = "X", .dt_cont = "10/15/2026", .valor = "5", .operacao = "*"});
  // In it, at both ends, and behind it.
  Movement({.lancamento = "C", .dt_lan = "10/20/2026", .dt_cont = "11/01/2026", .valor = "1.25"});
  Movement({.lancamento = "E",
            .dt_cont = "11/30/2026",
            .dt_vencto = "12/05/2026",
            .operacao = "+",
            .grupo = "1101"});
  Movement({.lancamento = "D", .valor = "2", .historico = "008", .pendente = "S"});
  Movement({.lancamento = "F", .docto = "D'ÁGUA {X}", .valor = "3", .pendente = "C"});
  Movement({.lancamento = "G", .dt_cont = "12/01/2026"});
  // Another account of the cash flow, one that isn't in it, and none at all.
  Movement({.lancamento = "H", .banco = "902", .conta = kOutraConta, .valor = "7"});
  Movement(
      {.lancamento = "I", .banco = "902", .conta = kOutraConta, .dt_cont = "10/01/2026", .valor = "1000"});
  Run("UPDATE CADCONTA_001 SET IMP_FLUXO = CASE WHEN CONTA IN ('10250-1', '20418-7') THEN 'S' ELSE 'N' END");
  Movement({.lancamento = "J", .conta = "33021-5"});
  Movement({.lancamento = "K", .conta = "99"});
  // The other company.
  AccountOfBoth();
  Movement({.lancamento = "L", .valor = "500", .operacao = "+"}, "_002");

  // The document narrows the rows only.
  for (const auto& c : Table(ORV_FILES "statement.txt", 2)) {
    Desk desk(database_);
    Open(desk, Named(c[0]));
    EXPECT_EQ(Gathered(desk, {}, {"Lancamento", "SaldoIni", "Saldo"}), c[1]) << c[0];
  }
}

TEST_F(StatementTest, RowsHoldWhatTheReportReads) {
  Movement({.lancamento = "A1", .valor = "1234.5", .observacao = std::string(100, 'x'), .pendente = "C"});
  Movement(
      {.lancamento = "A2", .banco = "999", .grupo = "9999", .historico = "zz", .tipo = "TR", .pendente = ""});
  Run("UPDATE CADCONTA_001 SET LIMITE = 5000, AGENCIA = '0123', EMPRESA = 'TITULAR' WHERE CONTA = '10250-1'");
  Desk desk(database_);
  Open(desk);
  const std::string described =
      Sql("SELECT G.DESCRICAO, H.DESCRICAO FROM SUBGRUPO_001 G JOIN HISTCP_001 H ON H.HISTORICO = '019' "
          "WHERE G.CODIGO = '3104'");
  EXPECT_EQ(
      Gathered(desk, {},
               {"Lancamento", "Numero",  "Banco",    "Nome_Banco", "Conta",   "Operacao",     "Valor",
                "DtLanc",     "DtCont",  "DtVencto", "CodGrupo",   "Grupo",   "CodHistorico", "Limite",
                "Empresa",    "Agencia", "Data_ini", "data_fim",   "Agrupar", "Pendente",     "Tipo"}),
      "A1|DA1|901|BANCO DA SERRA|10250-1|-|1234.5000|2026-11-10|2026-11-10|2026-11-10|3104|31|019|5000.0000|"
      "TITULAR|0123|2026-11-01|2026-11-30|L|N|L\n"
      "A2|DA2|999|-|10250-1|-|10.0000|2026-11-10|2026-11-10|2026-11-10|-|99|zz|5000.0000|TITULAR|0123|"
      "2026-11-01|2026-11-30|L|S|TR\n");
  EXPECT_EQ(desk.Read("TbRelatorio", {"DesGrupo", "Historico"}), described + "\n-|-\n");
  EXPECT_EQ(desk.Read("TbRelatorio", {"Pessoa", "Obs"}),
            std::string(40, 'x') + "|" + std::string(100, 'x') + "\nOBS A2|OBS A2\n");
}

TEST_F(StatementTest, EachGroupingOrdersTheRows) {
  const char* const rows[][7] = {
      // number, posted, counted, due, document, class, sign
      {"1", "11/12/2026", "11/10/2026", "11/15/2026", "D3", "3104", "-"},
      {"2", "11/11/2026", "11/10/2026", "11/14/2026", "D1", "1101", "+"},
      {"3", "11/10/2026", "11/11/2026", "11/14/2026", "D2", "3104", "-"},
      {"4", "11/10/2026", "11/11/2026", "11/13/2026", "D0", "1101", "-"},
  };
  for (const auto& r : rows) {
    Movement({.lancamento = r[0],
              .docto = r[4],
              .dt_lan = r[1],
              .dt_cont = r[2],
              .dt_vencto = r[3],
              .operacao = r[6],
              .grupo = r[5],
              .historico = *r[0] < '3' ? "019" : "008",
              .pendente = *r[0] == '2' ? "S" : "N"});
  }
  Run("UPDATE CADCONTA_001 SET IMP_FLUXO = 'S'");
  Movement({.lancamento = "5",
            .docto = "D9",
            .conta = kOutraConta,
            .dt_lan = "11/13/2026",
            .dt_cont = "11/10/2026",
            .dt_vencto = "11/12/2026",
            .historico = "001"});
  Desk desk(database_);
  Open(desk, {{"RgTipo", "1"}, {"RelConta", ""}, {"RelCodBan", ""}});
  const auto order = [&](int grouping, int date, bool pending) {
    const std::string shown = Gathered(desk,
                                       {{"RgAgrupar", std::to_string(grouping)},
                                        {"RgData", std::to_string(date)},
                                        {"cbAgpPendente", pending ? "true" : "false"}},
                                       {"Lancamento", "Agrupar"});
    std::string numbers(1, shown[2]);
    for (std::size_t at = 0; at < shown.size(); at += 4) numbers += shown[at];
    return numbers;
  };
  struct Case {
    int grouping, date;
    const char *order, *pending_apart;
  };
  const Case cases[] = {
      {0, 0, "L34215", "L34152"}, {0, 1, "L12534", "L15342"}, {0, 2, "L54231", "L54312"},
      {1, 1, "G24153", "G41532"}, {2, 1, "H53412", "H53412"}, {3, 1, "S42531", "S45312"},
      {4, 1, "S42531", "S45312"}, {5, 1, "D42315", "D43152"}, {6, 0, "O34215", "O34152"},
      {6, 1, "O21534", "O15342"}, {6, 2, "O54231", "O54312"}, {7, 0, "C34215", "C34152"},
      {7, 1, "C12345", "C13452"}, {7, 2, "C42315", "C43152"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(order(c.grouping, c.date, false), c.order) << c.grouping << " by " << c.date;
    EXPECT_EQ(order(c.grouping, c.date, true), c.pending_apart) << c.grouping << " by " << c.date;
  }
  // The running balance follows the days, whatever the order.
  Gathered(desk, {{"RgAgrupar", "5"}, {"RgData", "1"}, {"cbAgpPendente", "false"}}, {});
  EXPECT_EQ(desk.Read("TbRelatorio", {"Lancamento", "Saldo"}), "4|-30\n2|0\n3|-20\n1|-10\n5|-10\n");
}

TEST_F(StatementTest, AMovementIsItsPersons) {
  Receivable("T1", "00002");
  Receivable("T2", "00003");
  Receivable("T3", "");
  Payable("000077", "00004");
  Payable("000088", "00005");
  Movement({.lancamento = "1"});
  Received("T1", "1");
  Received("T2", "1");
  Paid("000077", "1");
  Movement({.lancamento = "2", .tipo = "R"});
  Received("T3", "2");  // a title of nobody
  Movement({.lancamento = "3", .tipo = "P"});
  Paid("000077", "3");
  Movement({.lancamento = "4", .docto = "000088/1", .tipo = "P"});
  Paid("000077", "4");
  Movement({.lancamento = "5", .docto = "000088/1", .tipo = "L"});
  Paid("000077", "5");
  Movement({.lancamento = "6", .docto = "/1", .tipo = "P"});
  Paid("000077", "6");
  Movement({.lancamento = "7", .docto = "000088/1", .tipo = "P"});  // nothing was settled
  // The other company has titles under the same numbers.
  Movement({.lancamento = "3", .dt_cont = "11/20/2026"}, "_002");
  AccountOfBoth();
  Put(Receber{.numero = "T9", .codcli = "00002"}, "_002");
  Received("T9", "3", "1", "_002");
  const std::string local = "1|" + Name("00002") + "\n2|-\n3|" + Name("00004") + "\n4|" + Name("00005") +
                            "\n5|" + Name("00004") + "\n6|-\n7|OBS 7\n";
  Desk desk(database_);
  Open(desk);
  EXPECT_EQ(Gathered(desk, {}, {"Lancamento", "Pessoa"}), local);
  const std::string other = Sql(
      "SELECT CAST(SUBSTRING(NOME FROM 1 FOR 40) AS VARCHAR(40)) FROM ENTIDADE_002 WHERE CODCLI = '00002'");
  EXPECT_EQ(Gathered(desk, {{"RgTipo", "2"}}, {"Lancamento", "Pessoa"}), local + "3|" + other + "\n");
}

TEST_F(StatementTest, TitlesComeAlong) {
  Receivable("T1", "00002");
  Receivable("T2", "00003");
  Payable("000077", "00004");
  Payable("000088", "00005");
  Movement({.lancamento = "1", .tipo = "R"});
  Movement(
      {.lancamento = "1", .operacao = "+", .tipo = "R"});  // a number on two rows brings its titles twice
  Received("T1", "1", "20");
  Received("T1", "1", "30");
  Received("T1", "1", "30");  // differs in nothing
  Received("T2", "1");
  Movement({.lancamento = "2", .tipo = "P"});
  Movement({.lancamento = "2", .docto = "OUTRO", .tipo = "P"});
  Paid("000077", "2", "40");
  Paid("000077", "2", "30");
  Paid("000088", "2");
  Movement({.lancamento = "3", .tipo = "L"});  // not of a kind that settles
  Received("T2", "3");
  Paid("000088", "3");
  Desk desk(database_);
  Open(desk, {{"CbFinanceiro", "true"}});
  Gathered(desk, {}, {});
  std::vector<std::string> lines;
  const auto title = [&](const char* line, const char* person) {
    lines.push_back(Name(person) + "|" + line);
  };
  title("R|1|T1|T1|20.0000|1.7500", "00002");
  title("R|1|T1|T1|30.0000|1.7500", "00002");
  title("R|1|T1|T1|20.0000|1.7500", "00002");
  title("R|1|T1|T1|30.0000|1.7500", "00002");
  title("R|1|T2|T2|50.0000|1.7500", "00003");
  title("R|1|T2|T2|50.0000|1.7500", "00003");
  title("P|2|000077|NF000077|30.0000|0.0000", "00004");
  title("P|2|000088|NF000088|70.0000|0.0000", "00005");
  std::stable_sort(lines.begin(), lines.end(), [](const std::string& a, const std::string& b) {
    return a.substr(0, a.find('|')) < b.substr(0, b.find('|'));
  });
  std::string expected;
  for (const std::string& line : lines) expected += line + "\n";
  EXPECT_EQ(desk.Read("TbFinan", {"Nome", "Tipo", "Lancto", "Numero", "Dupli", "Val_Pag", "Desconto"}),
            expected);
  EXPECT_EQ(desk.Read("TbRelatorio", {"Lancamento"}), "1\n1\n2\n2\n3\n");

  // Of all companies the titles, too; without the box none.
  Put(Receber{.numero = "T9", .codcli = "00002"}, "_002");
  Received("T9", "1", "9", "_002");
  Run("UPDATE CONTACOR_001 SET TIPO = 'L' WHERE OPERACAO = '-'");
  Gathered(desk, {{"RgTipo", "2"}}, {});
  EXPECT_EQ(desk.Read("TbFinan").size(), 4U);
  Gathered(desk, {{"CbFinanceiro", "false"}}, {});
  EXPECT_EQ(desk.Read("TbFinan").size(), 0U);
}

TEST_F(StatementTest, AnAccountWithoutMovementsShowsItsBalance) {
  Movement({.lancamento = "A", .dt_cont = "10/31/2026", .valor = "70.10", .operacao = "+"});
  Run("UPDATE CADCONTA_001 SET LIMITE = 5000, AGENCIA = '0123' WHERE CONTA = '10250-1'");
  Desk desk(database_);
  Open(desk);
  const auto fields = {"Conta",  "SaldoIni",   "Banco", "Nome_Banco", "Agencia",
                       "Limite", "Lancamento", "Valor", "Saldo",      "Data_ini"};
  EXPECT_EQ(Gathered(desk, {}, fields), "");
  const std::string one = "10250-1|70.1|901|BANCO DA SERRA|0123|5000.0000|-|-|-|2026-11-01\n";
  EXPECT_EQ(Gathered(desk, {{"CbZeradas", "true"}}, fields), one);
  EXPECT_EQ(Gathered(desk, {{"RgTipo", "1"}}, fields), one);
  desk.DoubleClick("DBGrid1", 0, "SaldoIni");
  std::string detail;
  for (const Json& out : desk.Latest()) {
    if (out["on"] == Json("detail")) detail = out["rows"].Items().at(0).Items().at(3).String();
  }
  EXPECT_EQ(detail, "70.1000");
  desk.Answer("ok");
  // No account, no row; and the balance follows a movement that there is.
  EXPECT_EQ(Gathered(desk, {{"RelConta", ""}}, fields), "");
  Movement({.lancamento = "B"});
  EXPECT_EQ(Gathered(desk, {{"RelConta", kConta}}, {"Lancamento", "SaldoIni", "Saldo"}), "B|70.1|60.1\n");
}

TEST_F(StatementTest, ARowShowsItsSource) {
  Receivable("T1", "00002");
  Movement({.lancamento = "1", .tipo = "R", .lanc_con = "77"});
  Received("T1", "1");
  Put(Partida{.lancamento = "1", .conta_c = "C1", .conta_d = "D1", .valor = "50"});
  Put(Partida{.lancamento = "77", .conta_c = "C2", .conta_d = "D2", .valor = "51"});
  Movement({.lancamento = "1", .dt_cont = "11/11/2026", .valor = "999"}, "_002");
  AccountOfBoth();
  Desk desk(database_);
  Open(desk, {{"RgTipo", "2"}, {"CbFinanceiro", "true"}, {"RgAgrupar", "5"}});
  const auto detail = [&](const char* grid, int row) {
    desk.DoubleClick(grid, row, grid[6] == '1' ? "Valor" : "Nome");
    std::string text = desk.Messages();
    for (const Json& out : desk.Latest()) {
      if (!(out["on"] == Json("detail"))) continue;
      text += out["title"].String() + ":";
      for (const Json& line : out["rows"].Items()) {
        const auto& cells = line.Items();
        text += " " + cells[0].String() + " " + cells[1].String() + " " + cells[7].String();
      }
    }
    desk.Answer("ok");
    return text;
  };
  desk.DoubleClick("DBGrid1", 0, "Valor");
  EXPECT_NE(desk.Messages(), "") << "there is no row yet";
  EXPECT_EQ(Gathered(desk, {}, {"Lancamento", "Valor"}), "1|10.0000\n1|999.0000\n");
  const std::string title = " Título recebido T1 50.0000";
  EXPECT_EQ(detail("DBGrid1", 0), "Lançamento 1: Movimento 1 10.0000" + title +
                                      " Contabilização 1 50.0000 Contabilização 77 51.0000");
  EXPECT_EQ(detail("DBGrid1", 1), "Lançamento 1: Movimento 1 999.0000" + title);
  EXPECT_EQ(detail("DBGrid2", 0), detail("DBGrid1", 0));
}

TEST_F(StatementTest, AFailureLeavesNoHalfOfAReport) {
  Movement({.lancamento = "1", .tipo = "R"});
  Receivable("T1", "00002");
  Received("T1", "1");
  Desk desk(database_);
  Open(desk, {{"CbFinanceiro", "true"}});
  EXPECT_EQ(Gathered(desk, {}, {"Lancamento"}), "1\n");
  // Discounts that don't add up.
  Run("UPDATE RECEBERB_001 SET DESCONTO = 900000000000000, DESCONTO2 = 900000000000000");
  EXPECT_TRUE(desk.Press("BitBtn29").starts_with("error: ")) << desk.Messages();
  EXPECT_EQ(desk.Read("TbRelatorio", {"Lancamento"}) + desk.Read("TbFinan", {"Lancto"}), "");
  EXPECT_EQ(desk.End(), "idle");
  Run("UPDATE RECEBERB_001 SET DESCONTO = 0, DESCONTO2 = 0");
  EXPECT_EQ(Gathered(desk, {}, {"Lancamento"}), "1\n");
  EXPECT_EQ(desk.Read("TbFinan", {"Lancto"}), "1\n");
}

}  // namespace
}  // namespace orv::test
