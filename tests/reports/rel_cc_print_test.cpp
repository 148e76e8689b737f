// The account statement as it is printed: fixed movements, each grouping, the exact text.
#include <filesystem>
#include <fstream>

#include "tests/reports/rel_cc_desk.h"

namespace orv::test {
namespace {

class PrintedTest : public RelCcTest {
 protected:
  PrintedTest() {
    Clear();
    Movement({.lancamento = "000001", .dt_cont = "10/31/2026", .valor = "1000.55", .operacao = "+"});
    const char* const rows[][6] = {
        // number, day, document, class, history, amount with its sign
        {"000002", "11/10/2026", "NF 30", "3104", "019", "-100.10"},
        {"000003", "11/10/2026", "NF 10", "1101", "002", "+2500"},
        {"000004", "11/11/2026", "NF 20", "3104", "003", "-0.45"},
        {"000005", "11/11/2026", "NF 10", "3104", "019", "-20"},
    };
    for (const auto& r : rows) {
      Movement({.lancamento = r[0],
                .docto = r[2],
                .dt_cont = r[1],
                .valor = r[5] + 1,
                .operacao = std::string(r[5], 1),
                .grupo = r[3],
                .historico = r[4],
                .tipo = *r[5] == '+' ? "R" : "L",
                .pendente = r[0][5] == '5' ? "S" : "N"});
    }
    Put(Receber{.numero = "T1",
                .codcli = "00002",
                .dt_emissao = "10/01/2026",
                .dt_vencto = "11/09/2026",
                .valor2 = "2400"});
    Put(Receberb{.numero = "T1",
                 .lancamento = "000003",
                 .valor_pago = "2500",
                 .juros = "100",
                 .desconto = "0",
                 .desconto2 = "0",
                 .desconto3 = "0"});
    Run("UPDATE ENTIDADE_001 SET NOME = 'CLIENTE DA SERRA' WHERE CODCLI = '00002'");
    Run("UPDATE CADCONTA_001 SET EMPRESA = 'MALHARIA' WHERE CONTA = '10250-1'");
  }
  // Gathers and prints.
  static std::string Printed(Desk& desk, const Fields& fields) {
    Fill(desk, fields);
    desk.Click("BitBtn29");
    return test::Printed(desk, "BitBtn33");
  }
};

TEST_F(PrintedTest, EachGrouping) {
  Desk desk(database_);
  Open(desk);
  const char* const names[] = {"Data",      "Classe",    "Histórico",     "Analítico",
                               "Sintético", "Documento", "Data/Operação", "Conta/Data"};
  std::string printed;
  for (int grouping = 0; grouping < 8; ++grouping) {
    printed += "##### " + std::string(names[grouping]) + "\n" +
               Printed(desk, {{"RgAgrupar", std::to_string(grouping)}});
  }
  printed += "##### Pendentes à parte, com os títulos\n" +
             Printed(desk, {{"RgAgrupar", "0"}, {"cbAgpPendente", "true"}, {"CbFinanceiro", "true"}});
  // What was gathered is printed, whatever was chosen since.
  const std::string whole = test::Printed(desk, "BitBtn33");
  Fill(desk, {{"RgData", "2"}, {"RgAgrupar", "4"}, {"cbAgpPendente", "false"}});
  EXPECT_EQ(test::Printed(desk, "BitBtn33"), whole);
  EXPECT_EQ(desk.Text("RgData"), "Vencimento");
  Fill(desk, {{"RgData", "1"}, {"RgAgrupar", "0"}});
  Period(desk, "01/11/2026", "05/11/2026");
  printed += "##### Sem movimentos\n" +
             Printed(desk, {{"cbAgpPendente", "false"}, {"CbFinanceiro", "false"}, {"CbZeradas", "true"}});
  printed += "##### Nada\n" + Printed(desk, {{"CbZeradas", "false"}});
  ExpectFile(printed, ORV_FILES "WccFluxo.txt");

  // A company's own template asks the screen, by the control's name or led by the screen's.
  const auto own = database_.parent_path() / "relatorios";
  std::filesystem::create_directories(own);
  std::ofstream(own / "WccFluxo.rel")
      << "dados TbRelatorio\nsubtitulo [edtdatade] a [FmSReport.Tela.edtDataAte]\n";
  EXPECT_NE(test::Printed(desk, "BitBtn33").find("01/11/2026 a 05/11/2026\n"), std::string::npos);
}

}  // namespace
}  // namespace orv::test
