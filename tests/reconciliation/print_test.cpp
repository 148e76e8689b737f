// The workbench and the bank statement as they are printed: the exact text.
#include "tests/reconciliation/concilia_desk.h"

namespace orv::test {
namespace {

class ConciliaPrintTest : public ConciliaTest {
 protected:
  ConciliaPrintTest() {
    Run("UPDATE CADCONTA_001 SET DESCRICAO = 'CONTA MOVIMENTO' WHERE CONTA = '10250-1'");
    Put(Movimento{.lancamento = "000001", .docto = "NF 1", .valor = "1000.55", .operacao = "+"});
    Put(Movimento{.lancamento = "000002", .docto = "NF 2", .valor = "250.05"});
    Put(Movimento{.lancamento = "000003", .docto = "CH 77", .valor = "99.99", .historico = "004"});
    Put(Extrato{.lancto = "E1", .docto = "1", .valor = "1000.55", .operacao = "C"});
    Put(Extrato{.lancto = "E2", .docto = "2", .valor = "250.05"});
    Put(Extrato{.lancto = "E3", .docto = "3", .valor = "12.50", .conciliado = "S", .lanc_con = "000900"});
  }
};

TEST_F(ConciliaPrintTest, TheTickedAndTheWhole) {
  Desk desk(database_);
  Consult(Open(desk));
  Tick(desk, {0}, {0});
  std::string printed = "##### Marcados\n" + Printed(desk, "BitBtn7");
  // The filter was for the print alone.
  EXPECT_EQ(Listed(desk) + ": " + Ticked(desk), "000001 000002 000003 / E1 E2: 000001 / E1");
  desk.Page("TabSheet2");
  printed += "##### Tudo\n" + Printed(desk, "BitBtn11");
  ExpectFile(printed, ORV_FILES "conciliacao.txt");
}

TEST_F(ConciliaPrintTest, StatementLinesFound) {
  Desk desk(database_, At{"TFmCadExtrato"});
  desk.Page("TabSheet1");
  desk.Click("BitBtn5");
  std::string printed = "##### Todos\n" + Printed(desk, "BitBtn1");
  desk.Set("RgBusca", "Conciliados");
  desk.Click("BitBtn5");
  printed += "##### Conciliados\n" + Printed(desk, "BitBtn1");
  ExpectFile(printed, ORV_FILES "extrato.txt");
  // Under the period by which the lines were found.
  const std::string found = Printed(desk, "BitBtn1");
  desk.Set("dtInicio", "20/11/2026");
  EXPECT_EQ(Printed(desk, "BitBtn1"), found);
  EXPECT_EQ(desk.Text("dtInicio"), "20/11/2026");
}

}  // namespace
}  // namespace orv::test
