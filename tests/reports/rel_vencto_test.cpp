// Movements by what became of them: the sections, their balances and titles, the printed page, and the sums
// of the demo company.
#include "tests/reports/rel_cc_desk.h"
#include "tests/support/table.h"
#include "toolkit/currency.h"

namespace orv::test {
namespace {

class VenctoTest : public RelCcTest {
 protected:
  static void Open(Desk& desk, const Fields& fields = {}) {
    desk.Open("TfmRelVencto");
    Fill(desk, fields);
    Period(desk, "01/11/2026", "30/11/2026");
  }
  // Movements of every kind around November.
  void Movements() {
    Clear();
    Movement({.lancamento = "A", .dt_lan = "10/31/2026", .valor = "100", .operacao = "+"});
    Movement({.lancamento = "B", .dt_lan = "10/15/2026", .valor = "30", .pendente = "S"});
    Movement({.lancamento = "X", .dt_lan = "10/20/2026", .valor = "5.555", .operacao = "+", .pendente = "C"});
    Movement({.lancamento = "C", .dt_lan = "11/01/2026", .valor = "1.25", .grupo = "1101"});
    Movement({.lancamento = "E", .dt_lan = "11/30/2026", .operacao = "+", .tipo = "R"});
    Movement({.lancamento = "D", .valor = "2", .historico = "008", .pendente = "S"});
    Movement({.lancamento = "F", .valor = "3", .pendente = "C"});
    Movement({.lancamento = "G", .dt_lan = "12/01/2026", .pendente = "S"});
    // Settled, and not yet accounted for.
    Movement(
        {.lancamento = "H", .docto = "CHEQUE 00000001", .dt_cont = "12/05/2026", .valor = "7", .tipo = "P"});
    Movement({.lancamento = "K", .conta = "99", .valor = "4", .observacao = "D'ÁGUA"});
    Put(Receber{.numero = "T1", .codcli = "00002", .dt_vencto = "11/09/2026", .valor2 = "9"});
    Put(Receberb{.numero = "T1", .lancamento = "E", .valor_pago = "10", .juros = "1"});
    Put(Pagto{.num_ap = "000077", .dupli = "NF 77/1", .dt_ven = "11/11/2026", .valor = "20"});
    for (const char* paid : {"3", "4", "4"})
      Put(Pagto1{.num_ap = "000077", .lancamento = "H", .val_pag = paid});
    Run("UPDATE ENTIDADE_001 SET NOME = 'CLIENTE DA SERRA' WHERE CODCLI = '00002'");
    Run("UPDATE ENTIDADE_001 SET NOME = 'FIOS DO VALE' WHERE CODCLI = '00003'");
  }
};

TEST_F(VenctoTest, SectionsBalancesAndTitles) {
  Movements();
  Desk desk(database_);
  Open(desk);
  // The text narrows the rows and not the balance; the class both.
  for (const auto& c : Table(ORV_FILES "vencto.txt", 2))
    EXPECT_EQ(Gathered(desk, Named(c[0]), {"Situacao", "Lancamento", "Saldo", "SaldoIni"}), c[1]) << c[0];

  // Each row brings the titles of its number, and the lower grid has those of the row in focus.
  Gathered(desk, {{"RgData", "0"}, {"CbFinanceiro", "true"}, {"CbPendCont", "true"}, {"CbPend", "true"}}, {});
  const auto titles = [&](int row) {
    desk.Stand("DBGrid1", row);
    return desk.Read("TbFinan", {"Tipo", "Numero", "Dupli", "Valor", "Val_Pag", "Nome", "Linha"});
  };
  const std::string paid = "P|000077|NF 77/1|20.0000|3.0000|FIOS DO VALE|";
  const std::string more = "P|000077|NF 77/1|20.0000|4.0000|FIOS DO VALE|";
  EXPECT_EQ(titles(0), "");
  EXPECT_EQ(titles(1), paid + "1\n" + more + "1\n" + paid + "9\n" + more + "9\n");
  EXPECT_EQ(titles(3), "R|T1|T1|9.0000|10.0000|CLIENTE DA SERRA|3\n");
  EXPECT_EQ(Detail(desk, "DBGrid1", 1, "Valor"), "Lançamento H 4");
  EXPECT_EQ(Detail(desk, "DBGrid1", 1, "SaldoIni"), "Saldo anterior a 01/11/2026 1");
  std::string printed = Printed(desk, "BitBtn33");
  Gathered(desk, {{"RgData", "2"}, {"EdtHistHistorico", "008"}, {"CbPendCont", "false"}}, {});
  ExpectFile(printed + Printed(desk, "BitBtn33"), ORV_FILES "WCCVencto.txt");

  // A choice takes the place of the earlier one.
  for (const char* key : {kConta, kOutraConta}) {
    desk.Click("PqConta");
    desk.Choose(key);
    EXPECT_EQ(desk.Text("EdtConta"), "'" + std::string(key) + "'");
  }
  desk.Click("SpeedButton1");
  EXPECT_EQ(desk.Text("EdtConta"), "");
  Period(desk, "01/11/2026", "31/02/2026");
  EXPECT_EQ(desk.Press("BitBtn29"), "Data inválida.");
}

TEST_F(VenctoTest, EverySumOfTheDemoCompany) {
  Desk desk(database_);
  Open(desk, {{"CbPendCont", "true"}, {"CbFinanceiro", "true"}});
  std::string text;
  for (const char* date : {"0", "1", "2"}) {
    Gathered(desk, {{"RgData", date}}, {});
    std::map<std::string, Currency> sums;
    for (const Row& row : desk.Read("TbRelatorio"))
      sums[row.at("Situacao") + " " + row.at("Conta") + row.at("Operacao")] +=
          Currency::ParseNeutral(row.at("Valor"));
    for (const auto& [key, sum] : sums) text += key + " " + sum.Neutral() + "\n";
  }
  ExpectFile(text, ORV_FILES "vencto_figures.txt");
}

}  // namespace
}  // namespace orv::test
