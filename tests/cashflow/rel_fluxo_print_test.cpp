// The cash-flow statement as it is printed: fixed rows, each layout and order, the exact text.
#include <array>

#include "tests/cashflow/fluxo_test.h"

namespace orv::test {
namespace {

class FluxoPrintTest : public FluxoTest {
 protected:
  FluxoPrintTest() {
    Clear();
    Run("UPDATE ENTIDADE_001 SET NOME = 'CLIENTE DA SERRA' WHERE CODCLI = '00002'");
    Run("UPDATE ENTIDADE_001 SET NOME = 'FIACAO TRES PONTES' WHERE CODCLI = '00003'");
    Run("UPDATE CADCONTA_001 SET EMPRESA = 'MALHARIA', IMP_FLUXO = 'S' WHERE CONTA IN ('10250-1', "
        "'20418-7')");
    // Balances of 1.000,55 and -250,05.
    for (const auto& [numero, conta, operacao, valor] :
         {std::array{"M1", "10250-1", "+", "1200.55"}, std::array{"M2", "10250-1", "-", "200"},
          std::array{"M3", "20418-7", "-", "250.05"}}) {
      Store("CONTACOR_001", {{"LANCAMENTO", numero},
                             {"DOCTO", numero},
                             {"CONTA", conta},
                             {"OPERACAO", operacao},
                             {"VALOR", valor},
                             {"PENDENTE", "N"},
                             {"DT_CONT", "10/30/2026"},
                             {"DT_LAN", "10/30/2026"},
                             {"DT_VENCTO", "10/30/2026"}});
    }
    // Two receivables on Monday the 23rd, one of them due on the Saturday before, one on the 24th; one is
    // overdue.
    Receber("R1", "11/21/2026", "500.10", "1101");
    Receber("R2", "11/23/2026", "99.90", "1202");
    Receber("R3", "11/24/2026", "1000", "1101");
    Receber("R0", "10/05/2026", "70.07", "1101", {{"BANCO", "901"}});
    Pagar("P1", "11/23/2026", "850.25", "2101");
    Pagar("P2", "11/25/2026", "3000", "3103");
    // A cheque held, a cheque written.
    Receber("C1", "11/24/2026", "45.50", "1101", {{"STATUS", "CH"}});
    Store("CHEQUE_PRE_001", {{"CHAVE", "K1"},
                             {"NUMERO", "000077"},
                             {"BANCO", "901"},
                             {"CONTA", "10250-1"},
                             {"VALOR", "120.20"},
                             {"VENCIMENTO", "11/25/2026"},
                             {"STATUS", "P"},
                             {"TIPO", "P"},
                             {"CLIENTE", "00003"},
                             {"OBS", "FRETE"}});
    Store("PEDIDO_001",
          {{"NUMERO", "V1"}, {"DT_FATURA", "11/24/2026"}, {"CODCLI", "00002"}, {"PER_DESC", "10"}});
    Store("PED_ITEN_001", {{"NUMERO", "V1"}, {"PRECO", "10"}, {"QTDE", "20"}});
    Store("COMPRA_001", {{"NUMERO", "O1"}, {"DT_ENTREGA", "11/25/2026"}, {"CODFOR", "00003"}});
    Store("CO_ITEN_001",
          {{"NUMERO", "O1"}, {"PRECO", "2.5"}, {"QTDE", "30"}, {"QTDE_B", "10"}, {"SITUACAO", "A"}});
  }
  void Receber(const char* numero, const char* day, const char* amount, const char* classe,
               const Fields& more = {}) {
    Fields fields{{"NUMERO", numero}, {"CODCLI", "00002"}, {"FATURA", "NF"},   {"VALOR2", amount},
                  {"JUROS", "0"},     {"VALOR_PAGO", "0"}, {"VAL_DEV", "0"},   {"DESCONTO", "0"},
                  {"STATUS", "N"},    {"DT_VENCTO", day},  {"CLASSE", classe}, {"OBS", "ENTREGA"},
                  {"SITUACAO", "1"}};
    fields.insert(fields.end(), more.begin(), more.end());
    Store("RECEBER_001", fields);
  }
  void Pagar(const char* numero, const char* day, const char* amount, const char* classe) {
    Store("PAGTO_001", {{"DUPLI", numero},
                        {"DOCTO", "NF"},
                        {"CODCRE", "00003"},
                        {"VALOR", amount},
                        {"JUROS", "0"},
                        {"DESCONTO", "0"},
                        {"VAL_PAG", "0"},
                        {"VAL_DEV", "0"},
                        {"STATUS", "N"},
                        {"DT_VEN", day},
                        {"NUM_OS", classe},
                        {"HISTORICO", "012"}});
  }
};

TEST_F(FluxoPrintTest, EachLayout) {
  Desk desk(database_);
  desk.Open("TfmRelFluxo");
  std::string printed;
  const auto print = [&](const char* title, const Fields& fields) {
    Fill(desk, "23/11/2026", "30/11/2026", fields);
    desk.Click("BitBtn29");
    printed += "##### " + std::string(title) + "\n" + Printed(desk, "BitBtn33");
  };
  print("TCCEstResum", {{"RgTipo", "1"}, {"CbCheque", "true"}, {"edtBanco", "'901'"}});
  // An account that doesn't count.
  desk.Do({{"do", "cell"}, {"control", "OrvDBGrid1"}, {"row", 1}, {"column", "Sel"}, {"value", false}});
  printed += "##### TCCEstResum sem uma conta\n" + Printed(desk, "BitBtn33");
  print("TCCEstResum, saldo digitado", {{"CbSaldo", "true"}, {"EdtSaldo", "10.000,00"}});
  print("WCCEstatistica", {{"CbSaldo", "false"}, {"RgTipo", "0"}});
  print("WCCEstatistica por entidade", {{"rgOrdem", "2"}});
  print("WCCEstatistica por número", {{"rgOrdem", "3"}});
  print("WCCEstatistClasGer", {{"rgOrdem", "1"}});
  print("WCCEstCompraVenda", {{"rgOrdem", "0"}, {"CbVenCom", "true"}});
  print("WCCEstCompraVendaR", {{"RgTipo", "1"}});
  Fill(desk, "01/12/2026", "02/12/2026");
  desk.Click("BitBtn29");
  printed += "##### Sem nada a esperar\n" + Printed(desk, "BitBtn33");
  ExpectFile(printed, ORV_FILES "relatorios.txt");
}

}  // namespace
}  // namespace orv::test
