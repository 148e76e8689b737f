// The cash-flow statement: the edge cases of each source, failures, the drill-down, the reports.
#include "tests/cashflow/fluxo_test.h"

namespace orv::test {
namespace {

constexpr const char* kDe = "07/12/2026";   // a Monday
constexpr const char* kAte = "12/12/2026";  // a Saturday

class RelFluxoTest : public FluxoTest {
 protected:
  RelFluxoTest() {
    Clear();
    Usual(Pagto{.codcre = nullptr, .num_os = nullptr, .valor = 70});
  }
  void Conta(Pagto conta) {
    conta.dupli = conta.num_ap;
    Put(conta);
  }
  void Order(const std::string& numero, const std::string& dia, const std::string& pgto) {
    Put(Pedido{.numero = numero, .dt_fatura = dia, .pgto = pgto});
    Put(PedItem{.numero = numero});
  }
  void Purchase(const std::string& numero, const std::string& dia, const std::string& condicao) {
    Put(Compra{.numero = numero, .dt_entrega = dia, .codfor = "00002", .condicao = condicao});
    Put(CoItem{.numero = numero});
  }
};

TEST_F(RelFluxoTest, ItemsMoveIntoThePeriodAndOutOfIt) {
  Put(Receber{.numero = "SABADO", .dt_vencto = "12/05/2026"});
  Put(Receber{.numero = "FIM", .dt_vencto = "12/12/2026"});   // moves behind the end
  Put(Receber{.numero = "CEDO", .dt_vencto = "12/03/2026"});  // a Thursday before the period
  Put(Receber{.numero = "BAIXA", .dt_vencto = "12/08/2026", .val_dev = "100"});
  Put(Receber{.numero = "ORCADO", .dt_vencto = "12/08/2026", .status = "O"});
  Conta({.num_ap = "C1", .dt_ven = "12/06/2026"});
  Conta({.num_ap = "C2", .dt_ven = "12/08/2026", .val_dev = "75"});
  Conta({.num_ap = "C3", .dt_ven = "12/08/2026", .status = "O"});
  Desk desk(database_, At{"TfmRelFluxo"});
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
  Desk later(database_, At{"TfmRelFluxo"});
  EXPECT_EQ(Gathered(later, kDe, kAte, {{"CbContBanc", "true"}}, {"DtLanc", "Numero"}),
            "2026-12-07|C1\n2026-12-08|SABADO\n2026-12-08|C2\n");
}

TEST_F(RelFluxoTest, RowsHoldWhatTheReportsRead) {
  Put(Receber{.numero = "1234567890AB",
              .dt_vencto = "12/08/2026",
              .valor2 = "10.5",
              .classe = "1101",
              .bordero = "9",
              .fatura = "F1",
              .obs = "D'AGUA"});
  Put(Bordero{.numero = "9", .tipo = "R", .data = "12/30/2026"});
  Conta({.num_ap = "C1", .dt_ven = "12/08/2026"});
  Desk desk(database_, At{"TfmRelFluxo"});
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
  Put(Receber{.numero = "SEM", .dt_vencto = "12/08/2026"});
  Put(Receber{.numero = "COM", .dt_vencto = "12/08/2026", .bordero = "7"});
  Put(Receber{.numero = "OUTRA", .dt_vencto = "12/08/2026", .bordero = "8"});
  Conta({.num_ap = "PAGA", .dt_ven = "01/01/2020", .lote = "007"});
  Conta({.num_ap = "NAO", .dt_ven = "12/08/2026"});
  for (const char* tipo : {"R", "P"}) Put(Bordero{.numero = "7", .tipo = tipo, .data = "12/09/2026"});
  Put(Bordero{.numero = "8", .tipo = "R", .conta = "20418-7", .data = "12/09/2026"});
  Desk desk(database_, At{"TfmRelFluxo"});
  // The account alone narrows the balances only.
  EXPECT_EQ(Gathered(desk, kDe, kAte, {{"EdtConta", "10250-1"}, {"rgOrdem", "3"}}, {"Numero"}),
            "COM\nNAO\nOUTRA\nSEM\n");
  EXPECT_EQ(Gathered(desk, kDe, kAte, {{"CbProgramacao", "true"}}, {"DtLanc", "Numero", "Conta"}),
            "2026-12-08|COM|10250-1\n2026-12-09|PAGA|10250-1\n");
  EXPECT_EQ(Gathered(desk, kDe, kAte, {{"EdtConta", ""}}, {"DtLanc", "Numero", "Conta"}),
            "2026-12-08|COM|10250-1\n2026-12-08|OUTRA|20418-7\n2026-12-09|PAGA|10250-1\n");
}

TEST_F(RelFluxoTest, ListFieldsKeepAndLeaveOut) {
  Put(Receber{.numero = "R0", .dt_vencto = "12/08/2026"});
  Put(Receber{.numero = "R1", .dt_vencto = "12/08/2026", .situacao = "1"});
  Conta({.num_ap = "P1", .dt_ven = "12/08/2026", .situacao = "1"});
  Desk desk(database_, At{"TfmRelFluxo"});
  for (const char* key : {"0", "1"}) {
    desk.Click("PqSituacaoRec");
    desk.Choose(key);
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
  Order("100", "12/07/2026", "000006");  // 50 on Monday and on Sunday
  Order("101", "12/08/2026", "      ");  // no slot
  Purchase("200", "12/07/2026", "000006");
  Purchase("201", "12/08/2026", "00AZZZ");  // hides nothing but itself
  Purchase("202", "12/09/2026", "000");
  Desk desk(database_, At{"TfmRelFluxo"});
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
  Put(Receber{.numero = "R1", .dt_vencto = "12/08/2026"});
  EXPECT_EQ(desk.Press("BitBtn29"), "error: \"XX\" não é um número inteiro válido.");
  EXPECT_EQ(desk.Do({{"do", "read"}}).back()["on"].String(), "idle");
  EXPECT_NE(desk.Read("TbRelatorio", {"Numero"}).find("R1"), std::string::npos);
  // Half of it isn't printed as the whole.
  EXPECT_EQ(desk.Told("BitBtn33"),
            "A última consulta não terminou: faltam lançamentos. Consulte de novo antes de imprimir.");
  EXPECT_EQ(Gathered(desk, kDe, kAte, {{"CbVenCom", "false"}}, {"Numero"}), "R1\n");
}

TEST_F(RelFluxoTest, ChequesComeFromTheirSources) {
  Put(Cheque{.chave = "K1",
             .numero = "E1",
             .valor = "33",
             .vencimento = "12/05/2026",
             .tipo = "P",
             .obs = "AO PORTADOR"});
  Put(Cheque{
      .chave = "K2", .numero = "E2", .valor = "44", .vencimento = "12/08/2026", .tipo = "P", .status = "B"});
  Put(Receber{.numero = "CH1", .dt_vencto = "12/08/2026", .valor_pago = "40", .status = "CH"});
  for (const char* operacao : {"+", "-"})
    Put(Movimento{.docto = "D1",
                  .dt_cont = "12/10/2026",
                  .dt_vencto = "12/09/2026",
                  .valor = 5,
                  .operacao = operacao,
                  .tipo_doc = "CH",
                  .pendente = "S"});
  Desk desk(database_, At{"TfmRelFluxo"});
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
    Put(Movimento{
        .conta = conta, .dt_cont = "11/20/2026", .valor = valor, .operacao = operacao, .pendente = pendente});
  Put(Movimento{.dt_cont = "11/21/2026", .valor = "1", .operacao = "+"});
  Put(Receber{.numero = "V1", .dt_vencto = "12/01/2026", .banco = "901"});
  Put(Receber{.numero = "V2", .dt_vencto = "12/01/2026", .banco = "901", .situacao = "P"});
  Put(Receber{.numero = "V3", .dt_vencto = "12/07/2026", .banco = "901"});
  Put(Receber{.numero = "V4", .dt_vencto = "12/01/2026", .valor2 = "0.5", .banco = "902", .status = ""},
      "_002");
  Desk desk(database_, At{"TfmRelFluxo"});
  Gathered(desk, kDe, kAte, {{"edtBanco", "'901','902'"}, {"CbEmp", "true"}}, {});
  const auto saldos = [&] { return desk.Read("TbSaldo", {"Sel", "Conta", "Valor", "ValReceb_Bancos"}); };
  EXPECT_EQ(saldos(), "S|10250-1|800.05|100.5\nS|20418-7|-3|100.5\n");
  desk.Cell("OrvDBGrid1", 0, "Sel", "N");
  EXPECT_EQ(desk.Messages(), "");
  desk.Cell("OrvDBGrid1", 0, "Valor", "9");
  EXPECT_NE(desk.Messages(), "");
  desk.Do({{"do", "key"}, {"control", "OrvDBGrid1"}, {"key", "Delete"}, {"row", 0}});
  EXPECT_EQ(saldos(), "N|10250-1|800.05|100.5\nS|20418-7|-3|100.5\n");
  // A list that names no bank asks for none.
  Gathered(desk, kDe, kAte, {{"EdtConta", "10250-1"}, {"edtBanco", " , "}}, {});
  EXPECT_EQ(saldos(), "S|10250-1|800.05|-\n");

  desk.Leave("EdtConta", "77", "RgTipo");
  EXPECT_EQ(desk.Told(), "Conta inválida.");
  EXPECT_EQ(desk.Text("EdtConta") + desk.FocusName(), "EdtConta");
}

TEST_F(RelFluxoTest, RowsShowTheirSource) {
  Put(Receber{.numero = "R1", .dt_vencto = "12/07/2026", .valor_pago = "40"});
  Put(Receberb{.numero = "R1", .lancamento = "L9", .dt_pagto = "12/01/2026", .valor_pago = "40"});
  Conta({.num_ap = "P1", .dt_ven = "12/08/2026"});
  Put(Cheque{.chave = "K1", .numero = "E1", .valor = "33", .vencimento = "12/09/2026", .tipo = "P"});
  Put(ChequeDup{.numero = "E1", .dupli = "P1"});
  Order("100", "12/10/2026", "000");
  Purchase("200", "12/11/2026", "000");
  Put(Receber{.numero = "R1", .codcli = nullptr, .dt_vencto = "12/11/2026", .valor2 = "8"}, "_002");
  Desk desk(database_, At{"TfmRelFluxo"});
  EXPECT_EQ(
      Gathered(desk, kDe, kAte, {{"CbCheque", "true"}, {"CbVenCom", "true"}, {"CbEmp", "true"}}, {"Numero"}),
      "R1\nP1\nE1\n100/01\nR1\n200/01\n");
  const auto detail = [&](int row) {
    desk.DoubleClick("DBGrid1", row, "Numero");
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
  Desk desk(database_, At{"TfmRelFluxo"});
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
