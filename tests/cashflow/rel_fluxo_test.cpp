// The cash-flow statement: the edge cases of each source, failures, the drill-down, the reports.
#include "tests/cashflow/fluxo_test.h"

namespace orv::test {
namespace {

constexpr const char* kDe = "07/12/2026";   // a Monday
constexpr const char* kAte = "12/12/2026";  // a Saturday

class RelFluxoTest : public FluxoTest {
 protected:
  RelFluxoTest() { Clear(); }
  void Titulo(const std::string& numero, const std::string& vencto, const Fields& more = {}) {
    Fields fields{
        {"NUMERO", numero}, {"DT_VENCTO", vencto}, {"SITUACAO", "0"}, {"CODCLI", "00002"}, {"VALOR2", "100"}};
    fields.insert(fields.end(), more.begin(), more.end());
    Store("RECEBER_001", fields);
  }
  void Conta(const std::string& numero, const std::string& vencto, const Fields& more = {}) {
    Fields fields{{"NUM_AP", numero}, {"DUPLI", numero}, {"DT_VEN", vencto},
                  {"VALOR", "70"},    {"SITUACAO", "0"}, {"LOTE", ""}};
    fields.insert(fields.end(), more.begin(), more.end());
    Store("PAGTO_001", fields);
  }
  void Pedido(const std::string& numero, const std::string& dia, const std::string& pgto) {
    Store("PEDIDO_001", {{"NUMERO", numero}, {"DT_FATURA", dia}, {"CODCLI", "00002"}, {"PGTO", pgto}});
    Store("PED_ITEN_001", {{"NUMERO", numero}, {"PRECO", "10"}, {"QTDE", "10"}});
  }
  void Compra(const std::string& numero, const std::string& dia, const std::string& condicao) {
    Store("COMPRA_001",
          {{"NUMERO", numero}, {"DT_ENTREGA", dia}, {"CODFOR", "00002"}, {"CONDICAO", condicao}});
    Store("CO_ITEN_001",
          {{"NUMERO", numero}, {"PRECO", "10"}, {"QTDE", "12"}, {"QTDE_B", "2"}, {"SITUACAO", "A"}});
  }
};

TEST_F(RelFluxoTest, ItemsMoveIntoThePeriodAndOutOfIt) {
  Titulo("SABADO", "12/05/2026");
  Titulo("FIM", "12/12/2026");   // moves behind the end
  Titulo("CEDO", "12/03/2026");  // a Thursday before the period
  Titulo("BAIXA", "12/08/2026", {{"VAL_DEV", "100"}});
  Titulo("ORCADO", "12/08/2026", {{"STATUS", "O"}});
  Conta("C1", "12/06/2026");
  Conta("C2", "12/08/2026", {{"VAL_DEV", "75"}});
  Conta("C3", "12/08/2026", {{"STATUS", "O"}});
  Desk desk(database_);
  desk.Open("TfmRelFluxo");
  EXPECT_EQ(desk.Text("EdtDataDe") + desk.Text("edtDataAte") + desk.Text("dtSaldo"),
            "01/01/198031/12/203020/11/2026");
  const auto fields = {"DtLanc", "Numero", "Vlr_receb", "Vlr_pagar", "Operacao"};
  EXPECT_EQ(Gathered(desk, kDe, kAte, {}, fields),
            "2026-12-07|SABADO|100.0000|0.0000|+\n2026-12-07|C1|0.0000|70.0000|-\n"
            "2026-12-08|C2|0.0000|-5.0000|-\n");
  EXPECT_EQ(Gathered(desk, kDe, kAte, {{"CbOrcPagar", "true"}, {"CbOrcReceber", "true"}, {"rgOrdem", "3"}},
                     {"Numero"}),
            "C1\nC2\nC3\nORCADO\nSABADO\n");
  // By the bank's float the titles move on; payables don't.
  Run("UPDATE TABSIT_001 SET DIAS_FLOAT = 1 WHERE CODIGO = '0'");
  Desk later(database_);
  later.Open("TfmRelFluxo");
  EXPECT_EQ(Gathered(later, kDe, kAte, {{"CbContBanc", "true"}}, {"DtLanc", "Numero"}),
            "2026-12-07|C1\n2026-12-08|SABADO\n2026-12-08|C2\n");
}

TEST_F(RelFluxoTest, RowsHoldWhatTheReportsRead) {
  Titulo("1234567890AB", "12/08/2026",
         {{"FATURA", "F1"}, {"CLASSE", "1101"}, {"OBS", "D'AGUA"}, {"BORDERO", "9"}, {"VALOR2", "10.5"}});
  Store("BORDERO_001", {{"NUMERO", "9"}, {"TIPO", "R"}, {"CONTA", "10250-1"}, {"DATA", "12/30/2026"}});
  Conta("C1", "12/08/2026");
  Desk desk(database_);
  desk.Open("TfmRelFluxo");
  const auto fields = {"Numero",  "Documento",   "Vlr_ChequePag", "Vlr_ChequeRec", "Data_ini", "data_fim",
                       "Vlr_Deb", "Vlr_Cre",     "Saldo",         "ClasseGer",     "Obs",      "Conta",
                       "Data",    "Lim_Credito", "Grupo_Dias",    "SaldoCorr"};
  EXPECT_EQ(
      Gathered(desk, kDe, kAte, {{"rgOrdem", "3"}}, fields).substr(0, 115),
      "1234567890|F1|-|0.0000|07/12/2026|12/12/2026|0.0000|0.0000|0.0000|1101|D'AGUA|10250-1|2026-12-30|" +
          Sql("SELECT CREDITO FROM ENTIDADE_001 WHERE CODCLI = '00002'") + "|-|-\nC1|");
  EXPECT_EQ(Gathered(desk, kDe, kAte, {{"RgTipo", "1"}}, {"Saldo"}), "-\n-\n");
  EXPECT_EQ(Gathered(desk, kDe, kAte, {{"CbSaldo", "true"}, {"EdtSaldo", "1.234,56"}}, {"Saldo"}),
            "1234.5600\n1234.5600\n");
}

TEST_F(RelFluxoTest, ProgrammedAccountsNarrowTheTitles) {
  Titulo("SEM", "12/08/2026");
  Titulo("COM", "12/08/2026", {{"BORDERO", "7"}});
  Titulo("OUTRA", "12/08/2026", {{"BORDERO", "8"}});
  Conta("PAGA", "01/01/2020", {{"LOTE", "007"}});
  Conta("NAO", "12/08/2026");
  for (const char* tipo : {"R", "P"})
    Store("BORDERO_001", {{"NUMERO", "7"}, {"TIPO", tipo}, {"CONTA", "10250-1"}, {"DATA", "12/09/2026"}});
  Store("BORDERO_001", {{"NUMERO", "8"}, {"TIPO", "R"}, {"CONTA", "20418-7"}, {"DATA", "12/09/2026"}});
  Desk desk(database_);
  desk.Open("TfmRelFluxo");
  // The account alone narrows the balances only.
  EXPECT_EQ(Gathered(desk, kDe, kAte, {{"EdtConta", "10250-1"}, {"rgOrdem", "3"}}, {"Numero"}),
            "COM\nNAO\nOUTRA\nSEM\n");
  EXPECT_EQ(Gathered(desk, kDe, kAte, {{"CbProgramacao", "true"}}, {"DtLanc", "Numero", "Conta"}),
            "2026-12-08|COM|10250-1\n2026-12-09|PAGA|10250-1\n");
  EXPECT_EQ(Gathered(desk, kDe, kAte, {{"EdtConta", ""}}, {"DtLanc", "Numero", "Conta"}),
            "2026-12-08|COM|10250-1\n2026-12-08|OUTRA|20418-7\n2026-12-09|PAGA|10250-1\n");
}

TEST_F(RelFluxoTest, ListFieldsKeepAndLeaveOut) {
  Titulo("R0", "12/08/2026");
  Titulo("R1", "12/08/2026", {{"SITUACAO", "1"}});
  Conta("P1", "12/08/2026", {{"SITUACAO", "1"}});
  Desk desk(database_);
  desk.Open("TfmRelFluxo");
  for (const char* key : {"0", "1"}) {
    desk.Click("PqSituacaoRec");
    desk.Do({{"do", "choose"}, {"key", key}});
  }
  EXPECT_EQ(desk.Text("EdtSitDesc"), "'0','1'");
  desk.Click("SpeedButton2");
  EXPECT_EQ(desk.Text("EdtSitDesc"), "");
  const Fields by_number = {{"rgOrdem", "3"}};
  struct Case {
    const char *keep, *no_receive, *no_pay, *found;
  };
  for (const Case& c :
       {Case{"'1'", "", "", "P1\nR1\n"}, Case{"", "'1'", "", "P1\nR0\n"}, Case{"", "", "1", "R0\nR1\n"},
        Case{" 0 , 1", "'0'", "'x','1'", "R1\n"}, Case{"') OR 1=1 --", "", "", ""}}) {
    EXPECT_EQ(
        Gathered(
            desk, kDe, kAte,
            {{"EdtSit", c.keep}, {"EdtSitDesc", c.no_receive}, {"EdtSitDescPag", c.no_pay}, {"rgOrdem", "3"}},
            {"Numero"}),
        c.found);
  }
}

TEST_F(RelFluxoTest, OrdersArePartedByTheirCondition) {
  Pedido("100", "12/07/2026", "000006");  // 50 on Monday and on Sunday
  Pedido("101", "12/08/2026", "      ");  // no slot
  Compra("200", "12/07/2026", "000006");
  Compra("201", "12/08/2026", "00AZZZ");  // hides nothing but itself
  Compra("202", "12/09/2026", "000");
  Desk desk(database_);
  desk.Open("TfmRelFluxo");
  const auto fields = {"DtLanc", "Numero", "Vlr_Venda", "Vlr_Compra", "Operacao", "Historico"};
  EXPECT_EQ(Gathered(desk, kDe, "13/12/2026", {{"CbVenCom", "true"}, {"rgOrdem", "3"}}, fields),
            "2026-12-07|100/01|100.0000|0.0000|+|PEDIDO PENDENTE Nº 100\n"
            "2026-12-08|101/01|100.0000|0.0000|+|PEDIDO PENDENTE Nº 101\n"
            "2026-12-07|200/01|0.0000|100.0000|+|ORDEM DE COMPRA Nº 200\n"
            "2026-12-08|201/01|0.0000|100.0000|+|ORDEM DE COMPRA Nº 201\n"
            "2026-12-09|202/01|0.0000|100.0000|+|ORDEM DE COMPRA Nº 202\n");
  // A sale stays on its Sunday, a purchase moves behind it, and that isn't tested again.
  EXPECT_EQ(Gathered(desk, kDe, "13/12/2026", {{"CBCond", "true"}},
                     {"DtLanc", "Numero", "Vlr_Venda", "Vlr_Compra"}),
            "2026-12-07|100/01|50.0000|0.0000\n2026-12-13|100/02|50.0000|0.0000\n"
            "2026-12-07|200/01|0.0000|50.0000\n2026-12-14|200/02|0.0000|50.0000\n"
            "2026-12-09|202/01|0.0000|100.0000\n");

  // A condition that can't be read ends the gathering where it is a sale's; what was gathered stays, and the
  // screen can be used.
  Run("UPDATE PEDIDO_001 SET PGTO = '000XX ' WHERE NUMERO = '100'");
  Titulo("R1", "12/08/2026");
  desk.Click("BitBtn29");
  EXPECT_EQ(desk.Messages(), "error: \"XX\" não é um número inteiro válido.");
  EXPECT_EQ(desk.Do({{"do", "read"}}).back()["on"].String(), "idle");
  EXPECT_NE(desk.Read("TbRelatorio", {"Numero"}).find("R1"), std::string::npos);
  // Half of it isn't printed as the whole.
  desk.Click("BitBtn33");
  EXPECT_EQ(desk.Messages(),
            "A última consulta não terminou: faltam lançamentos. Consulte de novo antes de imprimir.");
  desk.Answer("ok");
  EXPECT_EQ(Gathered(desk, kDe, kAte, {{"CbVenCom", "false"}}, {"Numero"}), "R1\n");
}

TEST_F(RelFluxoTest, ChequesComeFromTheirSources) {
  Store("CHEQUE_PRE_001", {{"CHAVE", "K1"},
                           {"NUMERO", "E1"},
                           {"VENCIMENTO", "12/05/2026"},
                           {"STATUS", "P"},
                           {"TIPO", "P"},
                           {"VALOR", "33"},
                           {"CONTA", "10250-1"},
                           {"OBS", "AO PORTADOR"}});
  Store("CHEQUE_PRE_001", {{"CHAVE", "K2"},
                           {"NUMERO", "E2"},
                           {"VENCIMENTO", "12/08/2026"},
                           {"STATUS", "B"},
                           {"TIPO", "P"},
                           {"VALOR", "44"},
                           {"CONTA", "10250-1"}});
  Titulo("CH1", "12/08/2026", {{"STATUS", "CH"}, {"VALOR_PAGO", "40"}});
  for (const char* operacao : {"+", "-"})
    Store("CONTACOR_001", {{"LANCAMENTO", "M1"},
                           {"DOCTO", "D1"},
                           {"CONTA", "10250-1"},
                           {"TIPO_DOC", "CH"},
                           {"PENDENTE", "S"},
                           {"OPERACAO", operacao},
                           {"DT_VENCTO", "12/09/2026"},
                           {"DT_CONT", "12/10/2026"},
                           {"VALOR", "5"}});
  Desk desk(database_);
  desk.Open("TfmRelFluxo");
  const auto fields = {"DtLanc", "Numero", "Vlr_ChequePag", "Vlr_ChequeRec", "Historico", "Conta", "Data"};
  EXPECT_EQ(Gathered(desk, kDe, kAte, {{"CbCheque", "true"}}, fields),
            "2026-12-07|E1|33.0000|-|AO PORTADOR|10250-1|2026-12-05\n2026-12-08|CH1|-|60.0000||-|-\n");
  EXPECT_EQ(Gathered(desk, kDe, kAte, {{"CbProgramacao", "true"}, {"EdtConta", "20418-7"}}, fields),
            "2026-12-09|D1|-|5.0000||10250-1|2026-12-10\n2026-12-09|D1|-|5.0000||10250-1|2026-12-10\n");
}

TEST_F(RelFluxoTest, BalancesAreMarkedAndLost) {
  const char* const rows[][4] = {{"10250-1", "N", "+", "1000.10"},
                                 {"10250-1", "N", "-", "200.05"},
                                 {"10250-1", "S", "+", "7"},
                                 {"20418-7", "N", "*", "3"}};
  for (const auto& [conta, pendente, operacao, valor] : rows)
    Store("CONTACOR_001", {{"LANCAMENTO", "X"},
                           {"CONTA", conta},
                           {"PENDENTE", pendente},
                           {"OPERACAO", operacao},
                           {"VALOR", valor},
                           {"DT_CONT", "11/20/2026"}});
  Store("CONTACOR_001", {{"LANCAMENTO", "X"},
                         {"CONTA", "10250-1"},
                         {"PENDENTE", "N"},
                         {"OPERACAO", "+"},
                         {"VALOR", "1"},
                         {"DT_CONT", "11/21/2026"}});
  Titulo("V1", "12/01/2026", {{"BANCO", "901"}});
  Titulo("V2", "12/01/2026", {{"BANCO", "901"}, {"SITUACAO", "P"}});
  Titulo("V3", "12/07/2026", {{"BANCO", "901"}});
  Store("RECEBER_002", {{"NUMERO", "V4"},
                        {"DT_VENCTO", "12/01/2026"},
                        {"BANCO", "902"},
                        {"SITUACAO", "0"},
                        {"STATUS", ""},
                        {"VALOR2", "0.5"}});
  Desk desk(database_);
  desk.Open("TfmRelFluxo");
  Gathered(desk, kDe, kAte, {{"edtBanco", "'901','902'"}, {"CbEmp", "true"}}, {});
  const auto saldos = [&] { return desk.Read("TbSaldo", {"Sel", "Conta", "Valor", "ValReceb_Bancos"}); };
  EXPECT_EQ(saldos(), "S|10250-1|800.05|100.5\nS|20418-7|-3|100.5\n");
  desk.Do({{"do", "cell"}, {"control", "OrvDBGrid1"}, {"row", 0}, {"column", "Sel"}, {"value", "N"}});
  EXPECT_EQ(desk.Messages(), "");
  desk.Do({{"do", "cell"}, {"control", "OrvDBGrid1"}, {"row", 0}, {"column", "Valor"}, {"value", "9"}});
  EXPECT_NE(desk.Messages(), "");
  desk.Do({{"do", "key"}, {"control", "OrvDBGrid1"}, {"key", "Delete"}, {"row", 0}});
  EXPECT_EQ(saldos(), "N|10250-1|800.05|100.5\nS|20418-7|-3|100.5\n");
  // A list that names no bank asks for none.
  Gathered(desk, kDe, kAte, {{"EdtConta", "10250-1"}, {"edtBanco", " , "}}, {});
  EXPECT_EQ(saldos(), "S|10250-1|800.05|-\n");

  desk.Set("EdtConta", "77");
  desk.Focus("RgTipo");
  EXPECT_EQ(desk.Messages(), "Conta inválida.");
  desk.Answer("ok");
  EXPECT_EQ(desk.Text("EdtConta") + desk.FocusName(), "EdtConta");
}

TEST_F(RelFluxoTest, RowsShowTheirSource) {
  Titulo("R1", "12/07/2026", {{"VALOR_PAGO", "40"}});
  Store("RECEBERB_001",
        {{"NUMERO", "R1"}, {"LANCAMENTO", "L9"}, {"VALOR_PAGO", "40"}, {"DT_PAGTO", "12/01/2026"}});
  Conta("P1", "12/08/2026");
  Store("CHEQUE_PRE_001", {{"CHAVE", "K1"},
                           {"NUMERO", "E1"},
                           {"VENCIMENTO", "12/09/2026"},
                           {"STATUS", "P"},
                           {"TIPO", "P"},
                           {"VALOR", "33"},
                           {"BANCO", "901"},
                           {"CONTA", "10250-1"}});
  Store("CHEQUE_DUP_001", {{"BANCO", "901"}, {"CONTA", "10250-1"}, {"NUMERO", "E1"}, {"DUPLI", "P1"}});
  Pedido("100", "12/10/2026", "000");
  Compra("200", "12/11/2026", "000");
  Run("INSERT INTO RECEBER_002 (NUMERO, DT_VENCTO, VALOR2) VALUES ('R1', '12/11/2026', 8)");
  Desk desk(database_);
  desk.Open("TfmRelFluxo");
  EXPECT_EQ(
      Gathered(desk, kDe, kAte, {{"CbCheque", "true"}, {"CbVenCom", "true"}, {"CbEmp", "true"}}, {"Numero"}),
      "R1\nP1\nE1\n100/01\nR1\n200/01\n");
  const auto detail = [&](int row) {
    desk.Do({{"do", "dblclick"}, {"control", "DBGrid1"}, {"row", row}, {"column", "Numero"}});
    std::string text = desk.Messages();
    for (const Json& out : desk.Latest()) {
      if (!(out["on"] == Json("detail"))) continue;
      text += out["title"].String() + ":";
      for (const Json& line : out["rows"].Items()) {
        const auto& cells = line.Items();
        text += " " + cells[0].String() + " " + cells[1].String() + " " +
                (cells[5].IsNull() ? "-" : cells[5].String());
        if (cells[0].String() == "Pedido" || cells[0].String().starts_with("Item"))
          text += " (" + cells[4].String() + ")";
      }
    }
    desk.Answer("ok");
    return text;
  };
  EXPECT_EQ(detail(0), "Título a receber R1: Título a receber R1 100.0000 Recebimento L9 -");
  EXPECT_EQ(detail(1), "Título a pagar P1: Título a pagar P1 70.0000");
  EXPECT_EQ(detail(2), "Cheque K1: Cheque E1 33.0000 Título a pagar P1 70.0000");
  EXPECT_EQ(detail(3),
            "Pedido 100: Pedido 100 100.0000 (IPE AMARELO MODAS 001 EIRELI desconto 0,00%) Item 100 100.0000 "
            "(10,000 x 10,00)");
  EXPECT_EQ(detail(4), "Título a receber R1: Título a receber R1 8.0000");
  EXPECT_EQ(detail(5),
            "Ordem de compra 200: Compra 200 100.0000 Item em aberto 200 100.0000 (10,000 x 10,00)");
}

TEST_F(RelFluxoTest, TheChoiceNamesTheReport) {
  Desk desk(database_);
  desk.Open("TfmRelFluxo");
  Fill(desk, kDe, kAte);
  desk.Click("BitBtn29");
  struct Case {
    const char *vendas, *tipo, *ordem, *identifier;
  };
  for (const Case& c :
       {Case{"true", "0", "1", "WCCEstCompraVenda"}, Case{"true", "1", "1", "WCCEstCompraVendaR"},
        Case{"false", "1", "1", "WCCEstatistClasGer"}, Case{"false", "0", "0", "WCCEstatistica"},
        Case{"false", "1", "2", "TCCEstResum"}}) {
    desk.Set("CbVenCom", c.vendas);
    desk.Set("RgTipo", c.tipo);
    desk.Set("rgOrdem", c.ordem);
    std::string launched;
    for (const Json& out : desk.Click("BitBtn33"))
      if (out["on"] == Json("report")) launched = out["identifier"].String();
    EXPECT_EQ(desk.Messages(), "");
    EXPECT_EQ(launched, c.identifier);
  }
}

}  // namespace
}  // namespace orv::test
