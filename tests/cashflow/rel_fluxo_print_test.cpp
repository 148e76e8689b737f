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
    Movimento("10250-1", "+", "1500");
    Movimento("10250-1", "-", "200.5");
    Movimento("20418-7", "-", "3000");
    Titulo("R1", "12/08/2026", "1000.1",
           {{"FATURA", "NF-0001"}, {"OBS", "ENTREGA COMBINADA PARA DEPOIS DO MEIO-DIA NA PORTARIA DOIS"}});
    Titulo("R2", "12/09/2026", "2500", {{"CLASSE", ""}});
    Titulo("R3", "12/09/2026", "300", {{"STATUS", "CH"}});
    Titulo("VENCIDO", "11/02/2026", "50", {{"BANCO", "901"}});
    Pagar("P1", "12/08/2026", {{"VALOR", "700.05"}, {"DOCTO", "D-77"}});
    Pagar("P2", "12/09/2026", {{"VALOR", "10"}, {"VAL_DEV", "15"}});
    Store("CHEQUE_PRE_001", {{"CHAVE", "K1"},
                             {"NUMERO", "E1"},
                             {"VENCIMENTO", "12/09/2026"},
                             {"STATUS", "P"},
                             {"TIPO", "P"},
                             {"VALOR", "150"},
                             {"CONTA", "10250-1"},
                             {"OBS", "FIO PENTEADO"}});
    Store("PEDIDO_001", {{"NUMERO", "77"}, {"DT_FATURA", "12/10/2026"}, {"CODCLI", "00002"}});
    Store("PED_ITEN_001", {{"NUMERO", "77"}, {"PRECO", "10"}, {"QTDE", "10"}});
    Store("COMPRA_001", {{"NUMERO", "88"}, {"DT_ENTREGA", "12/10/2026"}, {"CODFOR", "00003"}});
    Store("CO_ITEN_001",
          {{"NUMERO", "88"}, {"PRECO", "10"}, {"QTDE", "12"}, {"QTDE_B", "2"}, {"SITUACAO", "A"}});
  }
  void Movimento(const std::string& conta, const std::string& operacao, const std::string& valor) {
    Store("CONTACOR_001", {{"LANCAMENTO", "X"},
                           {"CONTA", conta},
                           {"PENDENTE", "N"},
                           {"OPERACAO", operacao},
                           {"VALOR", valor},
                           {"DT_CONT", "11/20/2026"}});
  }
  void Titulo(const std::string& numero, const std::string& vencto, const std::string& valor,
              const Fields& more) {
    Fields fields{{"NUMERO", numero},  {"DT_VENCTO", vencto}, {"VALOR2", valor},
                  {"CODCLI", "00002"}, {"SITUACAO", "0"},     {"CLASSE", "1101"}};
    fields.insert(fields.end(), more.begin(), more.end());
    Store("RECEBER_001", fields);
  }
  void Pagar(const std::string& numero, const std::string& vencto, const Fields& more) {
    Fields fields{{"NUM_AP", numero},  {"DUPLI", numero}, {"DT_VEN", vencto}, {"SITUACAO", "0"},
                  {"CODCRE", "00003"}, {"LOTE", ""},      {"NUM_OS", "3104"}};
    fields.insert(fields.end(), more.begin(), more.end());
    Store("PAGTO_001", fields);
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
