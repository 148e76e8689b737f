// The cash flow by bank: edges of the gathering, what is left out, the way to where figures come from, the
// report; and its figures reckoned a second time, by plain sums in the database.
#include "tests/cashflow/fluxo_test.h"

namespace orv::test {
namespace {

constexpr const char* kDe = "01/12/2026";
constexpr const char* kAte = "31/12/2026";
constexpr const char* kLonga = "1234567890-12";  // two accounts whose first ten characters agree
constexpr const char* kOutraLonga = "1234567890-34";

class FluxoBancoTest : public FluxoTest {
 protected:
  FluxoBancoTest() {
    Clear();
    Usual(Movimento{.dt_cont = "11/20/2026", .operacao = "+"});
    Usual(Pagto{.dt_ven = "12/10/2026"});
    Usual(Receber{.dt_vencto = "12/10/2026"});
  }
  static void Gather(Desk& desk, const Fields& fields = {}) {
    Fill(desk, kDe, kAte, fields);
    EXPECT_EQ(desk.Press("btnConfirma"), "");
  }
  static std::string Opened(Desk& desk, const char* grid, int row, const char* column) {
    desk.Page(std::map<std::string, const char*>{{"GridContas", "TabSheet1"},
                                                 {"DBGrid2", "TabSheet2"},
                                                 {"GridPagar", "TabSheet3"},
                                                 {"GridReceber", "TabSheet4"}}[grid]);
    desk.DoubleClick(grid, row, column);
    return Detail(desk);
  }
  static std::string Detail(Desk& desk) {
    std::string text = desk.Messages();
    for (const Json& out : desk.Latest()) {
      if (!(out["on"] == Json("detail"))) continue;
      text += out["title"].String() + ":";
      for (const Json& line : out["rows"].Items())
        text += " " + (line.Items()[1].IsString() ? line.Items()[1].String() : "-");
    }
    desk.Answer("ok");
    return text;
  }
};

const auto kConta = {"Conta", "Valor", "Operacao", "Cred_BCO", "Debi_BCO", "Cheq_Pend", "Limite", "TotDia"};

TEST_F(FluxoBancoTest, AccountsAndTitles) {
  Run("UPDATE CADCONTA_001 SET LIMITE = 500 WHERE CONTA = '10250-1'");
  Run("UPDATE CADCONTA_002 SET LIMITE = 70 WHERE CONTA = '10250-1'");
  for (const char* conta : {kLonga, kOutraLonga})
    Put(Movimento{.lancamento = conta[11] == '1' ? "L1" : "L3", .conta = conta, .valor = 5});
  Put(Movimento{.lancamento = "A1", .valor = 1000});
  Put(Movimento{.lancamento = "A2", .valor = "300.5", .operacao = "-", .pendente = "C"});
  Put(Movimento{.lancamento = "A3", .dt_cont = "12/01/2026", .valor = 40});
  Put(Movimento{.lancamento = "A4", .dt_cont = "12/31/2026", .valor = 900, .operacao = "-"});
  Put(Movimento{.lancamento = "A5", .dt_cont = "01/01/2027", .valor = 1});
  Put(Movimento{.lancamento = "P1", .dt_cont = "01/10/2027", .valor = 60, .operacao = "-", .pendente = "S"});
  Put(Movimento{.lancamento = "P2", .dt_cont = "01/11/2027", .valor = 60, .operacao = "-", .pendente = "S"});
  // Only in the period: no row.
  Put(Movimento{.conta = kOutraConta, .dt_cont = "12/05/2026", .valor = 8});
  Put(Movimento{.conta = kOutraConta, .dt_cont = "12/05/2026", .valor = 3, .pendente = "S"});
  Put(Movimento{.lancamento = "B1", .valor = 20}, "_002");
  Put(Pagto{.num_ap = "P1", .valor = 100, .val_dev = 100});
  Put(Pagto{.num_ap = "P2", .valor = 9, .status = "O"});
  Put(Pagto{.num_ap = "PAGO", .valor = 9, .val_pag = 9});
  Put(Pagto{.num_ap = "DEPOIS", .dt_ven = "01/01/2027"});
  Put(Pagto{.num_ap = "P1", .valor = 100, .val_dev = 100}, "_002");
  Put(Receber{.numero = "R1", .val_dev = 100});
  Put(Receber{.numero = "R2", .valor2 = 50, .situacao = "1"});
  Put(Receber{.numero = "R3", .dt_vencto = "12/06/2026", .valor2 = 25});  // a Sunday stays one

  Desk desk(database_, At{"TfmRelFluxoBanco"});
  EXPECT_EQ(desk.Texts({"EdtDataDe", "edtDataAte", "EdtDtCheque", "EdtConta"}),
            "20/11/2026|31/12/2030|31/12/2050|");
  Gather(desk, {{"EdtDtCheque", "10/01/2027"}, {"CbTotDia", "true"}});
  EXPECT_EQ(desk.Read("TbSaldo", kConta),
            "10250-1|1000|+|40|900|-60|500|S\n10250-1|300.5|-|0|0|-|0|S\n1234567890-12|5|+|0|0|-|0|S\n"
            "1234567890-34|5|+|0|0|-|0|S\n");
  EXPECT_EQ(desk.Read("TbSaldo", {"Periodo"}).substr(0, 24), "01/12/2026 a 31/12/2026\n");
  EXPECT_EQ(desk.Rows("TbChequePendente") + desk.Rows("tbDebitosCreditos"),
            "10250-1|-60\n20418-7|3\n+|10250-1|40\n-|10250-1|900\n+|20418-7|8\n");
  EXPECT_EQ(desk.Read("TbContas", {"Conta", "Anterior", "Saldo", "Cheq_Pend", "Menor", "Dia"}),
            "10250-1|699.5000|-160.5000|-60.0000|-160.5000|2026-12-31\n"
            "1234567890-12|5.0000|5.0000|-|5.0000|2026-12-01\n"
            "1234567890-34|5.0000|5.0000|-|5.0000|2026-12-01\n");
  EXPECT_EQ(desk.Caption("LbMenor"),
            "Menor saldo: -184,50 em 31/12/2026, com os títulos do período e sem os cheques pendentes.");
  EXPECT_EQ(desk.Caption("LbConsulta"),
            "Sem movimento antes de 01/12/2026 e por isso fora da lista: 1 conta, com créditos de 8,00, "
            "débitos de 0,00 e cheques pendentes de 3,00.");
  EXPECT_EQ(desk.Read("QryPagar", {"NUM_AP", "VALOR"}), "P1|100.0000\nP2|9.0000\n");
  EXPECT_EQ(desk.Read("QryReceber", {"NUMERO", "VALOR"}), "R3|25.0000\nR2|50.0000\n");

  EXPECT_EQ(Opened(desk, "GridContas", 0, "Debitos"), "Débitos do período da conta 10250-1: A4");
  EXPECT_EQ(Opened(desk, "GridContas", 0, "Menor"), "Movimentos do período da conta 10250-1: A3 A4");
  EXPECT_EQ(Opened(desk, "GridContas", 0, "Anterior"), "Saldo da conta 10250-1 antes de 01/12/2026: 11");
  EXPECT_EQ(Opened(desk, "DBGrid2", 0, "Cheq_Pend"), "Cheques pendentes da conta 10250-1: P1");
  EXPECT_EQ(Opened(desk, "DBGrid2", 3, "Valor"), "Movimento L3: L3");
  EXPECT_EQ(Opened(desk, "GridPagar", 1, "VALOR"), "Título a pagar P2: -");
  desk.Click("BtFora");
  EXPECT_EQ(Detail(desk), "Contas sem movimento antes de 01/12/2026, fora da lista: 20418-7");
  EXPECT_EQ(Opened(desk, "GridReceber", 0, "VALOR"), "Título a receber R3: R3");

  Gather(desk, {{"CbEmpresa", "true"}, {"EdtConta", "10250-1"}, {"EdtSit", "'1'"}, {"CbTotDia", "false"}});
  EXPECT_EQ(desk.Read("TbSaldo", kConta),
            "10250-1|1000|+|40|900|-60|500|N\n10250-1|300.5|-|0|0|-|0|N\n10250-1|20|+|0|0|-|0|N\n");
  EXPECT_EQ(desk.Read("TbContas", {"Conta", "Anterior", "Limite"}), "10250-1|719.5000|500.0000\n");
  EXPECT_EQ(desk.Read("QryPagar", {"NUM_AP", "VALOR", "EMPRESA"}),
            "P1|100.0000|_001\nP2|9.0000|_001\nP1|100.0000|_002\n");
  EXPECT_EQ(desk.Column("QryReceber", "NUMERO"), "R2");
  EXPECT_EQ(Opened(desk, "DBGrid2", 2, "Valor"), "Movimento B1: B1");
  EXPECT_FALSE(desk.Visible("BtFora"));

  // Cancelled, nothing of it stays; what was missing is gathered before it is printed.
  const auto all = [&] { return desk.Rows("TbContas") + desk.Rows("QryPagar") + desk.Caption("LbMenor"); };
  const std::string whole = all();
  for (const char* stage : {"Cheques pendentes", "Títulos a pagar"}) {
    EXPECT_EQ(desk.Cancelled("btnConfirma", stage), "error: Operação cancelada.");
    EXPECT_EQ(all() + desk.Rows("TbSaldo") + desk.Caption("LbConsulta"),
              "A última consulta não terminou. Confirme de novo.");
  }
  EXPECT_EQ(desk.Press("BtnImprime"), "");
  EXPECT_EQ(all(), whole);

  desk.Leave("EdtConta", "77", "EdtSit");
  EXPECT_EQ(desk.Refused(), "Conta inválida. > EdtConta");
  EXPECT_EQ(desk.Text("EdtConta"), "");
  for (const char* field : {"EdtDtCheque", "EdtDataDe", "edtDataAte"}) desk.Focus(field);
  EXPECT_EQ(desk.Texts({"EdtDataDe", "edtDataAte", "EdtDtCheque"}), "20/11/2026|20/11/2026|20/11/2026");
}

TEST_F(FluxoBancoTest, Printed) {
  Run("UPDATE CADCONTA_001 SET LIMITE = 500, EMPRESA = 'CONFECÇÃO' WHERE CONTA = '10250-1'");
  Run("UPDATE ENTIDADE_001 SET NOME = 'FIAÇÃO ÁGUIA' WHERE CODCLI = '00003'");
  Desk desk(database_, At{"TfmRelFluxoBanco"});
  std::string printed = test::Printed(desk, "BtnImprime") + "##### Por dia\n";
  Put(Movimento{.valor = "1234.56"});
  Put(Movimento{.valor = 34, .operacao = "-"});
  Put(Movimento{.dt_cont = "12/02/2026", .valor = 2000, .operacao = "-"});
  Put(Movimento{.valor = 60, .operacao = "-", .pendente = "S"});
  Put(Movimento{.conta = kOutraConta, .valor = 10});
  Put(Movimento{.conta = kLonga, .dt_cont = "12/02/2026", .valor = 7});
  for (const char* dia : {"12/09/2026", "12/10/2026"}) {
    for (const char* vez : {"1", "2"})
      Put(Pagto{.num_ap = std::string(vez) + dia[4], .dupli = "D", .dt_ven = dia, .valor = "12.5"});
    Put(Receber{.numero = std::string("R") + dia[4], .dt_vencto = dia, .valor2 = "1000.1", .fatura = "NF"});
  }
  Gather(desk, {{"CbTotDia", "true"}, {"EdtDtCheque", "31/12/2050"}});
  printed += test::Printed(desk, "BtnImprime");
  EXPECT_EQ(printed.find("#ERRO"), std::string::npos);
  ExpectFile(printed, ORV_FILES "WCCEst_Banco.txt");
}

class FluxoBancoSecondSumTest : public FluxoTest {};

TEST_F(FluxoBancoSecondSumTest, EveryAccountAndTitleAgrees) {
  const std::string cheques = "DT_CONT <= '12/10/2026' AND PENDENTE = 'S'",
                    before = "DT_CONT < '10/01/2026' AND PENDENTE IN ('N', 'C')",
                    within = "DT_CONT >= '10/01/2026' AND DT_CONT < '01/01/2027' AND PENDENTE IN ('N', 'C')";
  const std::string tables =
      Sql("SELECT LIST(TRIM(RDB$RELATION_NAME), ' ') FROM RDB$RELATIONS WHERE RDB$SYSTEM_FLAG = 0");
  const std::string untouched = Tables(tables);
  for (const bool all : {false, true}) {
    const auto of = [&](const std::string& table) {
      return all ? "(SELECT * FROM " + table + "_001 UNION ALL SELECT * FROM " + table + "_002)"
                 : table + "_001";
    };
    Desk desk(database_, At{"TfmRelFluxoBanco"});
    Fill(desk, "01/10/2026", "31/12/2026",
         {{"CbEmpresa", all ? "true" : "false"}, {"EdtDtCheque", "10/12/2026"}});
    ASSERT_EQ(desk.Press("btnConfirma"), "");
    std::map<std::string, std::array<Currency, 4>> gathered, expected;
    for (const Row& row : desk.Read("TbSaldo")) {
      const auto amount = [&](const char* field) {
        return Currency::ParseNeutral(row.at(field) == "-" ? "0" : row.at(field));
      };
      auto& conta = gathered[row.at("Conta")];
      conta[0] += row.at("Operacao") == "-" ? -amount("Valor") : amount("Valor");
      conta[1] += amount("Cred_BCO");
      conta[2] += amount("Debi_BCO");
      conta[3] += amount("Cheq_Pend");
    }
    const auto sum = [](const std::string& when, const char* amount) {
      return ", SUM(IIF(" + when + ", " + amount + ", 0))";
    };
    const char* const saldo = "DECODE(OPERACAO, '+', VALOR, -VALOR)";
    for (const auto& row :
         Db().Rows("SELECT CONTA" + sum(before, saldo) + sum(within + " AND OPERACAO = '+'", "VALOR") +
                   sum(within + " AND OPERACAO = '-'", "VALOR") + sum(cheques, saldo) + " FROM " +
                   of("CONTACOR") + " M GROUP BY CONTA HAVING SUM(IIF(" + before + ", 1, 0)) > 0"))
      for (std::size_t i = 0; i < 4; ++i) expected[row[0].AsString()][i] = row[i + 1].AsCurrency();
    EXPECT_EQ(gathered, expected);
    EXPECT_GT(expected.size(), 2U);
    for (const auto& [set, table, day, amount] :
         {std::array{"QryPagar", "PAGTO", "DT_VEN", "VALOR + JUROS - VAL_PAG - DESCONTO"},
          std::array{"QryReceber", "RECEBER", "DT_VENCTO",
                     "VALOR2 + JUROS - VALOR_PAGO - VAL_DEV - DESCONTO"}}) {
      std::map<std::string, std::pair<Currency, int64_t>> titles, sums;
      for (const Row& row : desk.Read(set)) {
        titles[row.at(day)].first += Currency::ParseNeutral(row.at("VALOR"));
        ++titles[row.at(day)].second;
      }
      for (const auto& row :
           Db().Rows("SELECT " + std::string(day) + ", SUM(" + amount + "), COUNT(*) FROM " + of(table) +
                     " T WHERE " + amount + " > 0 AND EXTRACT(YEAR FROM " + day +
                     ") = 2026 AND EXTRACT(MONTH FROM " + day + ") >= 10 GROUP BY 1"))
        sums[row[0].AsDate().Neutral()] = {row[1].AsCurrency(), row[2].AsInteger()};
      EXPECT_EQ(titles, sums) << set;
      EXPECT_GT(sums.size(), 5U) << set;
    }
    Db().CommitRetaining();
  }
  EXPECT_EQ(Tables(tables), untouched);
}

}  // namespace
}  // namespace orv::test
