// The cash-flow statement as it is printed: fixed data, each of its five reports, the exact text.
#include <sstream>

#include "tests/cashflow/fluxo_test.h"

namespace orv::test {
namespace {

constexpr const char* kDe = "07/12/2026";   // a Monday
constexpr const char* kAte = "11/12/2026";  // a Friday

// What is expected:
//   tuesday    1.000,10 to receive, 700,05 to pay:          300,05
//   wednesday  2.500,00 to receive, a cheque of 300,00 to receive, one of 150,00 issued,
//              5,00 paid too much (a return of 15,00 on 10,00):  2.655,00
//   thursday   an order and a purchase of 100,00 each
// and the accounts: 1.299,50 and -3.000,00, together -1.700,50.
class FluxoPrintedTest : public FluxoTest {
 protected:
  FluxoPrintedTest() {
    Clear();
    Run("UPDATE CADCONTA_001 SET IMP_FLUXO = 'S', EMPRESA = 'CONFECÇÃO' WHERE CONTA = '10250-1'");
    Run("UPDATE CADCONTA_001 SET IMP_FLUXO = 'S', EMPRESA = 'MALHARIA' WHERE CONTA = '20418-7'");
    Run("UPDATE ENTIDADE_001 SET NOME = 'CONFECÇÕES SÃO JOÃO DA BOA VISTA INDÚSTRIA E COMÉRCIO LTDA' WHERE "
        "CODCLI = '00002'");
    Run("UPDATE ENTIDADE_001 SET NOME = 'FIAÇÃO ÁGUIA' WHERE CODCLI = '00003'");
    Usual(Movimento{.dt_cont = "11/20/2026"});
    Usual(Receber{.classe = "1101"});
    Put(Movimento{.valor = 1500, .operacao = "+"});
    Put(Movimento{.valor = "200.5"});
    Put(Movimento{.conta = kOutraConta, .valor = 3000});
    Put(Receber{.numero = "R1",
                .dt_vencto = "12/08/2026",
                .valor2 = "1000.1",
                .fatura = "NF-0001",
                .obs = "ENTREGA COMBINADA PARA DEPOIS DO MEIO-DIA NA PORTARIA DOIS"});
    Put(Receber{.numero = "R2", .dt_vencto = "12/09/2026", .valor2 = 2500, .classe = ""});
    Put(Receber{.numero = "R3", .dt_vencto = "12/09/2026", .valor2 = 300, .status = "CH"});
    Put(Receber{.numero = "VENCIDO", .dt_vencto = "11/02/2026", .valor2 = 50, .banco = "901"});
    Put(Pagto{.num_ap = "P1", .docto = "D-77", .dupli = "P1", .dt_ven = "12/08/2026", .valor = "700.05"});
    Put(Pagto{.num_ap = "P2", .dupli = "P2", .dt_ven = "12/09/2026", .valor = 10, .val_dev = 15});
    Usual(Cheque{.vencimento = "12/09/2026", .tipo = "P", .obs = "FIO PENTEADO"});
    Put(Cheque{.chave = "K1", .numero = "E1", .valor = 150});
    Put(Pedido{.numero = "77", .dt_fatura = "12/10/2026"});
    Put(PedItem{.numero = "77"});
    Put(Compra{.numero = "88", .dt_entrega = "12/10/2026"});
    Put(CoItem{.numero = "88"});
  }
  // Gathers and prints.
  static std::string Printed(Desk& desk, const Fields& fields, const char* de = kDe) {
    Fill(desk, de, kAte, fields);
    desk.Click("BitBtn29");
    std::string text = test::Printed(desk, "BitBtn33");
    EXPECT_EQ(text.find("#ERRO"), std::string::npos);
    EXPECT_EQ(text.find("modelo "), std::string::npos);
    return text;
  }
  // The cells of the line that begins so.
  static std::string Line(const std::string& text, const std::string& begin) {
    const std::size_t at = text.find("\n" + begin);
    if (at == std::string::npos) return "";
    std::istringstream words(
        text.substr(at + 1 + begin.size(), text.find('\n', at + 1) - at - 1 - begin.size()));
    std::string cells, word;
    while (words >> word) cells += (cells.empty() ? "" : " ") + word;
    return cells;
  }
};

const Fields kResumo{{"CbCheque", "true"}, {"RgTipo", "1"}, {"edtBanco", "'901'"}};

TEST_F(FluxoPrintedTest, SummaryByDay) {
  Desk desk(database_, At{"TfmRelFluxo"});
  std::string printed = Printed(desk, kResumo);
  EXPECT_NE(printed.find("Período de pesquisa de 07/12/2026 até 11/12/2026"), std::string::npos);
  EXPECT_NE(printed.find("Títulos Vencidos em Banco:50,00"), std::string::npos);
  EXPECT_EQ(Line(printed, "Saldo Inicial"), "-1.700,50");
  EXPECT_EQ(Line(printed, "08/12/26 - terça-feira"), "1.000,10 0,00 -700,05 0,00 300,05 -1.400,45");
  EXPECT_EQ(Line(printed, "09/12/26 - quarta-feira"), "2.500,00 300,00 -145,00 150,00 2.655,00 1.254,55");
  EXPECT_EQ(Line(printed, "Total"), "3.500,10 300,00 -845,05 150,00 2.955,05 1.254,55");
  // The typed balance takes the place of the accounts'.
  const std::string typed = Printed(desk, {{"CbSaldo", "true"}, {"EdtSaldo", "100"}});
  EXPECT_EQ(Line(typed, "Saldo Inicial"), "100,00");
  EXPECT_EQ(Line(typed, "09/12/26 - quarta-feira"), "2.500,00 300,00 -145,00 150,00 2.655,00 3.055,05");
  EXPECT_EQ(Line(typed, "Total"), "3.500,10 300,00 -845,05 150,00 2.955,05 3.055,05");
  printed += "##### Saldo digitado\n" + typed;
  printed += "##### Sem lançamentos\n" + Printed(desk, {{"CbSaldo", "false"}}, "11/12/2026");
  ExpectFile(printed, ORV_FILES "TCCEstResum.txt");
}

TEST_F(FluxoPrintedTest, ItemByItem) {
  Desk desk(database_, At{"TfmRelFluxo"});
  std::string printed = Printed(desk, {{"CbCheque", "true"}});
  EXPECT_EQ(Line(printed, "Saldo Inicial"), "-1.700,50");
  EXPECT_EQ(Line(printed, "Total geral"), "3.500,10 300,00 695,05 150,00 1.254,55");
  for (const char* ordem : {"2", "3"})
    printed += std::string("##### Ordem ") + ordem + "\n" + Printed(desk, {{"rgOrdem", ordem}});
  // Of what isn't programmed for an account only the issued cheque is left.
  const std::string programmed = Printed(desk, {{"CbProgramacao", "true"}});
  EXPECT_EQ(Line(programmed, "Total geral"), "0,00 0,00 0,00 150,00 -1.850,50");
  printed += "##### Programação\n" + programmed;
  printed +=
      "##### Sem lançamentos\n" + Printed(desk, {{"CbProgramacao", "false"}, {"rgOrdem", "0"}}, "11/12/2026");
  ExpectFile(printed, ORV_FILES "WCCEstatistica.txt");
}

TEST_F(FluxoPrintedTest, ClassByClass) {
  Desk desk(database_, At{"TfmRelFluxo"});
  std::string printed = Printed(desk, {{"CbCheque", "true"}, {"rgOrdem", "1"}});
  EXPECT_EQ(Line(printed, "Total do período"), "3.500,10 300,00 695,05 150,00 2.955,05");
  EXPECT_EQ(Line(printed, "Saldo Geral"), "1.254,55");
  printed += "##### Resumido\n" + Printed(desk, {{"RgTipo", "1"}});
  // Programmed accounts are listed day by day, in the order of the rows.
  for (const char* tipo : {"1", "0"}) {
    printed += std::string("##### Programação ") + tipo + "\n" +
               Printed(desk, {{"RgTipo", tipo}, {"CbProgramacao", "true"}});
  }
  printed += "##### Sem lançamentos\n" + Printed(desk, {{"CbProgramacao", "false"}}, "11/12/2026");
  ExpectFile(printed, ORV_FILES "WCCEstatistClasGer.txt");

  // Another order chosen after the gathering is that of the rows too.
  const std::string gathered = Printed(desk, {});
  Printed(desk, {{"rgOrdem", "0"}});
  desk.Set("rgOrdem", "1");
  EXPECT_EQ(test::Printed(desk, "BitBtn33"), gathered);
}

TEST_F(FluxoPrintedTest, WithOrdersAndPurchases) {
  Run("UPDATE PED_ITEN_001 SET QTDE = 12");
  Desk desk(database_, At{"TfmRelFluxo"});
  // The order brings 120,00, the purchase takes 100,00.
  std::string printed = Printed(desk, {{"CbCheque", "true"}, {"CbVenCom", "true"}});
  EXPECT_EQ(Line(printed, "Total geral"), "120,00 3.500,10 300,00 100,00 695,05 150,00 1.274,55");
  for (const char* ordem : {"1", "2", "3"})
    printed += std::string("##### Ordem ") + ordem + "\n" + Printed(desk, {{"rgOrdem", ordem}});
  printed += "##### Sem lançamentos\n" + Printed(desk, {{"rgOrdem", "0"}}, "11/12/2026");
  ExpectFile(printed, ORV_FILES "WCCEstCompraVenda.txt");

  printed = Printed(desk, {{"RgTipo", "1"}});
  EXPECT_EQ(Line(printed, "10/12/26 - quinta-feira"), "120,00 0,00 0,00 100,00 0,00 0,00 20,00 1.274,55");
  EXPECT_EQ(Line(printed, "Total geral"), "120,00 3.500,10 300,00 100,00 695,05 150,00 2.975,05 1.274,55");
  for (const char* ordem : {"1", "2", "3"})
    printed += std::string("##### Ordem ") + ordem + "\n" + Printed(desk, {{"rgOrdem", ordem}});
  printed += "##### Sem lançamentos\n" + Printed(desk, {{"rgOrdem", "0"}}, "11/12/2026");
  ExpectFile(printed, ORV_FILES "WCCEstCompraVendaR.txt");
}

}  // namespace
}  // namespace orv::test
