// The cash-flow analysis: edges of the gathering, simulation, hiding, the way from tab to tab, the report.
#include "tests/cashflow/fluxo_test.h"

namespace orv::test {
namespace {

constexpr const char* kDe = "20/11/2026";  // a Friday, today
constexpr const char* kAte = "31/12/2026";

class AnaliseTest : public FluxoTest {
 protected:
  AnaliseTest() {
    Clear();
    Empty("FACCAO3_001 TINTUR_001 TINTUR_ITEN_001 TECEL_001 TECEL_ITEN_001 COND_PAGTO_001 VALOR_MOEDA_001");
    Run("UPDATE CADCONTA_001 SET IMP_FLUXO = 'N' WHERE CONTA NOT IN ('10250-1', '20418-7')");
    Put(Movimento{.valor = 1000, .operacao = "+"});
    Usual(Receber{.classe = "1101"});
  }
  // A purchase of 100,00 that is to be delivered on a day.
  void Purchase(const std::string& numero, const std::string& dia, const std::string& mais = "FRETE = '1'") {
    Put(Compra{.numero = numero, .condicao = "000"});
    Put(CoItem{.numero = numero});
    Run("UPDATE CO_ITEN_001 SET DT_ENTREGA = '" + dia + "' WHERE NUMERO = '" + numero + "'");
    Run("UPDATE COMPRA_001 SET LIBERADO = 'S', CLASSE = '2101', " + mais + " WHERE NUMERO = '" + numero +
        "'");
  }
  // Gathers; what was told.
  static std::string Gather(Desk& desk, const Fields& fields = {}, const char* de = kDe,
                            const char* ate = kAte) {
    Fill(desk, de, ate, fields);
    return desk.Press("BitBtn29");
  }
  static std::string Shown(Desk& desk, const char* grid) {
    std::string text;
    const Json columns = desk.Property(grid, "columns");
    for (const Json& column : columns.Items()) text += Split(column.String(), "\t")[0] + " ";
    return text;
  }
  static std::string Detail(Desk& desk) {
    std::string text = desk.Messages();
    for (const Json& out : desk.Latest()) {
      if (!(out["on"] == Json("detail"))) continue;
      text += out["title"].String() + ":";
      for (const Json& line : out["rows"].Items()) {
        for (const Json& cell : line.Items()) text += cell.IsNull() ? "" : " " + cell.String();
        text += ";";
      }
    }
    desk.Answer("ok");
    return text;
  }
};

TEST_F(AnaliseTest, AccountsDecideWhatEntersOfTheLedger) {
  Run("INSERT INTO CADCONTA_001 (CONTA, IMP_FLUXO, BANCO) VALUES ('1234567890-12', 'S', '901')");
  Put(Movimento{.conta = "1234567890-12", .valor = 5, .operacao = "+", .pendente = "C"});
  Put(Movimento{.conta = "20418-7", .valor = 7, .operacao = "+", .pendente = "S"});
  Put(Movimento{
      .lancamento = "L1", .dt_vencto = "11/25/2026", .valor = 30, .tipo_doc = "CH", .pendente = "S"});
  Put(Movimento{.lancamento = "L2", .dt_vencto = "11/26/2026", .valor = 40, .pendente = "S"});
  Put(Pagto{.num_ap = "P1", .dt_ven = "11/27/2026"});
  Desk desk(database_, At{"TfmRelAnaliseFluxo"});
  EXPECT_EQ(desk.Texts({"EdtDataDe", "edtDataAte"}), "20/11/2026|20/12/2026");
  EXPECT_EQ(desk.Read("TbSaldo", {"Seleciona", "Conta", "Saldo"}),
            "S|10250-1|0.0000\nS|1234567890-12|0.0000\nS|20418-7|0.0000\n");
  Gather(desk);
  // What is reconciled counts; an account without a settled movement is gone, with its pending ones.
  EXPECT_EQ(desk.Read("TbSaldo", {"Seleciona", "Conta", "Saldo"}),
            "S|10250-1|1000.0000\nS|1234567890-12|5.0000\n");
  EXPECT_EQ(desk.Column("TbDetalha", "Numero"), "L1 L2 P1");
  EXPECT_EQ(desk.Read("TbRelatorio", {"CodPer", "Periodo", "Saldo"}),
            "00|Saldo Inicial.|1005.0000\n2026 / 11|Novembro / 2026|835.0000\n");
  EXPECT_EQ(desk.Caption("LbMenor") + desk.Rows("TbMenor"),
            "Menor saldo: 835,00 em 27/11/2026.10250-1|CONTA "
            "MOVIMENTO|1000.0000|930.0000|2026-11-26\n1234567890-12|-|5.0000|5.0000|2026-11-20\n");
  // A change of accounts moves the balances at once, and the next gathering sees the mark.
  desk.Page("TabSheet1");
  desk.Cell("OrvDBGrid1", 0, "Seleciona", "false");
  desk.Stand("OrvDBGrid1", 1);
  EXPECT_EQ(desk.Column("TbRelatorio", "Saldo"), "5.0000 -165.0000");
  desk.Cell("OrvDBGrid1", 1, "Saldo", "500");
  desk.Cell("OrvDBGrid1", 1, "Descricao", "X");
  EXPECT_NE(desk.Messages(), "");
  desk.Stand("OrvDBGrid1", 0);
  EXPECT_EQ(desk.Column("TbRelatorio", "Saldo"), "500.0000 330.0000");
  // Without any account the opening balance goes, and comes back with one.
  desk.Cell("OrvDBGrid1", 1, "Seleciona", "false");
  desk.Page("TabSheet2");
  EXPECT_EQ(desk.Column("TbRelatorio", "Saldo"), "-170.0000");
  desk.Page("TabSheet1");
  desk.Cell("OrvDBGrid1", 1, "Seleciona", "true");
  desk.Focus("BitBtn29");
  EXPECT_EQ(desk.Column("TbRelatorio", "Saldo"), "500.0000 330.0000");
  Gather(desk);
  EXPECT_EQ(desk.Column("TbDetalha", "Numero") + desk.Column("TbRelatorio", "Saldo"), "P15.0000 -95.0000");
}

TEST_F(AnaliseTest, PurchasesByTheirOwnDatesAndRates) {
  Purchase("LONGA", "11/25/2026");
  Purchase("CURTA", "11/25/2026", "MOEDA = '4'");
  Purchase("PAGA", "12/08/2026", "DOCTO = 'D9', FRETE = '2', VAL_FRETE = 10");
  for (const char* sql :
       {"('LONGA', 'C', '03/09/2030')", "('LONGA', 'C', '11/20/2026')", "('CURTA', 'C', '05/01/2031')"})
    Run(std::string("INSERT INTO COND_PAGTO_001 VALUES ") + sql);
  Put(Pagto{.num_ap = "A1", .docto = "D9", .dt_ven = "01/01/2028", .valor = 250});
  Run("INSERT INTO VALOR_MOEDA_001 VALUES ('4', '20/11/2026', 5)");
  Desk desk(database_, "ana", "_001", "2026-11-23");  // a Monday
  desk.Open("TfmRelAnaliseFluxo");
  Fill(desk, kDe, "31/12/2027", {{"CBCond", "true"}});
  EXPECT_EQ(desk.Told("BitBtn29"), "Prazo de vencimento muito longo para a ordem de compra CURTA");
  const auto rows = [&] {
    return desk.Read("TbDetalha", {"Numero", "Docto", "Emissao", "Vencto", "Valor_Compra", "Classe"});
  };
  // 1,200 days are cut to 120; five days before the delivery; more was paid in advance than it costs.
  EXPECT_EQ(rows(),
            "LONGA/01|LONGA|2026-11-25|2026-11-20|50.0000|COMPRA\nPAGA/"
            "01|PAGA|2026-12-08|2026-12-08|-140.0000|COMPRA\n"
            "LONGA/02|LONGA|2026-11-25|2027-03-25|50.0000|COMPRA\nCURTA/"
            "01|CURTA|2026-11-25|2027-05-05|500.0000|COMPRA\n");
  EXPECT_EQ(desk.Caption("LbConsulta"), "");
  // Orders in one piece stand on their day; the rate is that of the issue, which isn't there.
  Run("UPDATE COMPRA_001 SET DT_EMISSAO = '11/02/2026'");
  Fill(desk, kDe, "31/12/2027", {{"CBCond", "false"}, {"CbMoedaEmiOC", "true"}});
  desk.Told("BitBtn29");
  // A hidden column keeps what is below zero, which still counts.
  desk.Check("CbCompras", false);
  EXPECT_EQ(desk.Caption("LbOcultos").substr(desk.Caption("LbOcultos").find("Contam")),
            "Contam, embora ocultos, valores negativos: Valor Compras -140,00.");
  EXPECT_EQ(desk.Column("TbDetalha", "Vencto") + " " + desk.Column("TbDetalha", "Valor_Compra"),
            "2026-11-25 2026-11-25 2026-12-08 100.0000 100.0000 -140.0000");
  EXPECT_EQ(desk.Caption("LbConsulta"), "Compras sem cotação, contadas a 1,00: moeda 4 em 02/11/2026.");
  // By its items a purchase has a row for each of their days, and its own dates don't count.
  Run("UPDATE CO_ITEN_001 SET DT_FATURA = '12/01/2026'");
  Put(CoItem{.numero = "LONGA", .qtde = 3});
  Run("UPDATE CO_ITEN_001 SET DT_FATURA = '12/02/2026' WHERE QTDE = 3");
  EXPECT_EQ(
      Gather(desk, {{"CbCompras", "true"}, {"CBCond", "true"}, {"CbDataItens", "true"}}, kDe, "31/12/2027"),
      "");
  EXPECT_EQ(desk.Column("TbDetalha", "Valor_Compra"), "100.0000 100.0000 -140.0000 10.0000");
  desk.Do({{"do", "dblclick"}, {"control", "DBGrid1"}, {"row", 1}, {"column", "Valor_Compras"}});
  desk.DoubleClick("DBGrid2", 0, "Numero");
  EXPECT_NE(Detail(desk).find("Ordem de compra CURTA: Compra CURTA"), std::string::npos);

  // A condition that is no number ends the gathering; what was gathered stays.
  Put(Pedido{.numero = "RUIM", .dt_fatura = "11/25/2026", .pgto = "0A0"});
  Run("UPDATE PEDIDO_001 SET SIT_DUP = '0'");
  Put(PedItem{.numero = "RUIM"});
  EXPECT_EQ(Gather(desk, {{"CbDataItens", "false"}}), "error: \"0A0\" não é um número inteiro válido.");
  EXPECT_EQ(desk.Caption("LbConsulta"), "A última consulta não terminou: faltam lançamentos.");
}

TEST_F(AnaliseTest, WorkshopsArePaidByTheirCondition) {
  Put(Pagto{.num_ap = "P1", .dt_ven = "12/30/2026"});
  struct Case {
    const char *condicao, *saida, *dia;
  };
  // On that day of the month, today's at the earliest; what is no day of the month counts as days.
  for (const Case& c : {Case{"015", "11/01/2026", "2026-12-15"}, Case{"20", "11/01/2026", ""},
                        Case{"21", "11/01/2026", "2026-11-21"}, Case{"045", "11/01/2026", "2026-12-16"},
                        Case{"031030", "11/05/2026", "2026-12-06"}, Case{"", "12/31/2026", ""},
                        Case{"", "12/30/2026", "2026-12-30"}, Case{"", "09/01/2026", ""}}) {
    Empty("FACCAO3_001");
    Run(std::string("UPDATE ENTIDADE_001 SET CONDICAO = '") + c.condicao + "' WHERE CODCLI = '00003'");
    for (const char* quantidade : {"2", "0.5"})
      Run(std::string("INSERT INTO FACCAO3_001 VALUES ('000077', '01', '00003', '") + c.saida +
          "', 'GOLA', " + quantidade + ", 10, 'N')");
    Desk desk(database_, At{"TfmRelAnaliseFluxo"});
    Gather(desk);
    std::string found;
    for (const Row& row : desk.Read("TbDetalha"))
      if (row.at("Classe") == "FACCAO")
        found = row.at("Vencto") + row.at("Prev_pag") + row.at("Observacao").substr(0, 21) +
                row.at("Observacao").substr(row.at("Observacao").find(". Parte"));
    EXPECT_EQ(found, c.dia[0] == '\0'
                         ? ""
                         : std::string(c.dia) + "25OF 000077. Setor - 01. Parte - GOLA. Quantidade 2,5")
        << c.condicao;
  }
}

TEST_F(AnaliseTest, WhatIsSimulatedAndHiddenComesBack) {
  Put(Receber{.numero = "R1", .dt_vencto = "11/25/2026"});
  Put(Receber{.numero = "C1", .dt_vencto = "12/09/2026", .valor2 = 60, .status = "CH", .numero_ch = "77"});
  Put(Pagto{.num_ap = "P1", .dt_ven = "12/10/2026", .valor = 30});
  const std::string tables = "CONTACOR_001 RECEBER_001 PAGTO_001 CADCONTA_001 AUDITORIA CHEQUE_PRE_001",
                    before = Tables(tables);
  Desk desk(database_, At{"TfmRelAnaliseFluxo"});
  Gather(desk, {{"CbClasse", "true"}});
  const auto balances = [&] { return desk.Column("TbRelatorio", "Saldo"); };
  const std::string gathered = desk.Rows("TbRelatorio");
  ASSERT_EQ(balances(), "1000.0000 1100.0000 1130.0000");
  desk.Cell("DBGrid1", 1, "Nota_Saida", "250,50");
  desk.Key("DBGrid1", 1, "Nota_Saida", "Tab");
  EXPECT_EQ(balances() + " " + desk.Text("TotSaida"), "1000.0000 849.5000 879.5000 250,50");
  EXPECT_EQ(desk.Caption("LbMenor"), "Menor saldo: 849,50 em 25/11/2026.");
  // Kept under a name it can be laid beside what is now and opened again, in its company alone.
  const auto chart = [&] {
    desk.Do({{"do", "row"}, {"control", "DBGrid1"}, {"row", 0}, {"column", "Periodo"}});
    desk.Page("TabSheet5");
  };
  chart();
  desk.Press("BtGuardar", "Pessimista");
  desk.Set("CbCompara1", "Pessimista");
  desk.Page("TabSheet2");
  desk.Cell("DBGrid1", 1, "Nota_Saida", "0");
  desk.Key("DBGrid1", 1, "Nota_Saida", "Tab");
  chart();
  EXPECT_EQ(desk.Rows("TbCompara"),
            "Saldo Inicial.|1000.0000|1000.0000|-\nNovembro / 2026|1100.0000|849.5000|-\nDezembro / "
            "2026|1130.0000|879.5000|-\n");
  desk.Click("BtAbrir");
  EXPECT_EQ(balances(), "1000.0000 849.5000 879.5000");
  const auto kept = [](Desk& at) { return at.Property("CbCompara1", "items").Items().size() - 1; };
  Desk other(database_, At{"TfmRelAnaliseFluxo", "ana", "_002"});
  EXPECT_EQ(kept(desk), 1U);
  EXPECT_EQ(kept(other), 0U);
  desk.Press("BtExcluir", "yes");
  EXPECT_EQ(kept(desk), 0U);
  desk.Page("TabSheet2");
  // What is typed over reaches the balance with the next sum; the balance itself can't be typed.
  desk.Cell("DBGrid1", 2, "Valor_Pag", "130");
  EXPECT_EQ(balances(), "1000.0000 849.5000 879.5000");
  desk.Cell("DBGrid1", 2, "Nota_Entrada", "1");
  desk.Stand("DBGrid1", 0);
  EXPECT_EQ(balances(), "1000.0000 849.5000 780.5000");
  desk.Cell("DBGrid1", 1, "Saldo", "1");
  EXPECT_EQ(desk.Messages(), "error: Esta coluna é só de leitura.");
  desk.Check("CbSimula", false);
  EXPECT_EQ(balances(), "1000.0000 1100.0000 1030.0000");
  // A hidden kind leaves the balance, and comes back by another gathering only.
  desk.Check("CbCheRec", false);
  EXPECT_EQ(balances() + Shown(desk, "DBGrid1"),
            "1000.0000 1100.0000 970.0000Periodo Valor_Rec Valor_Venda Pend_Rec Orca_Rec Valor_Pag "
            "Cheque_Pag Valor_Compras Pend_Pag Orca_Pag Prev_Pag Saldo ");
  EXPECT_EQ(desk.Caption("LbOcultos"),
            "Os saldos não contam o que foi ocultado: Cheque Rec. 60,00. Para contar, marque o tipo e "
            "consulte de novo.");
  desk.Do({{"do", "row"}, {"control", "DBGrid1"}, {"row", 0}, {"column", "Periodo"}});
  desk.Page("TabSheet4");
  EXPECT_EQ(desk.Caption("LbClasse"), "Conta o que foi ocultado em Análise: Cheque Rec. 60,00.");
  desk.DoubleClick("DBGrid3", 0, "Total");
  EXPECT_EQ(
      Detail(desk),
      "Classe 1101 (com os tipos ocultos em Análise: Cheque Rec. 60,00): Valor Receber R1 2026-11-25 IPE "
      "AMARELO MODAS 001 EIRELI 100.0000; Cheque Rec. C1 2026-12-09 IPE AMARELO MODAS 001 EIRELI 60.0000;");
  desk.Page("TabSheet2");
  desk.Check("CbCheRec", true);
  desk.DoubleClick("DBGrid1", 2, "Cheque_Rec");
  EXPECT_EQ(desk.Caption("LbDetalhe"),
            "Dezembro / 2026, Cheque Rec.: 1 lançamento, 60,00. Em Análise está 0,00: o tipo foi ocultado e "
            "volta com nova consulta.");
  desk.Check("CbSimula", true);
  Gather(desk);
  EXPECT_EQ(desk.Rows("TbRelatorio"), gathered);
  EXPECT_EQ(Tables(tables), before);
}

TEST_F(AnaliseTest, FiguresOpenAndTabsFollow) {
  const std::string before = Tables("ENTIDADE_001 CONTACOR_001 CADCONTA_001");
  Put(Receber{.numero = "R1", .dt_vencto = "11/25/2026", .valor_pago = 40});
  Put(Receber{.numero = "R2", .dt_vencto = "11/24/2026", .valor2 = 9});
  Put(Pagto{.num_ap = "P1", .dt_ven = "12/10/2026", .valor = 30});
  Desk desk(database_, At{"TfmRelAnaliseFluxo"});
  Gather(desk);
  desk.DoubleClick("DBGrid1", 1, "Valor_Rec");
  EXPECT_EQ(
      desk.Column("TbDetalha", "Numero") + Shown(desk, "DBGrid2"),
      "R2 R1Tipo Numero Docto Emissao Vencto Cliente Nome CodSit Situacao Observacao Valor_Rec Nome_Rep ");
  EXPECT_EQ(desk.Caption("LbDetalhe"), "Novembro / 2026, Valor Receber: 2 lançamentos, 69,00.");
  desk.Title("DBGrid2", "Numero");
  desk.DoubleClick("DBGrid2", 0, "Numero");
  EXPECT_EQ(Detail(desk).substr(0, 55), "Título a receber R1: Título a receber R1 2026-11-25 I");
  desk.Key("DBGrid2", 0, "Numero", "F4");
  // Columns without detail lead back, whatever tab was chosen.
  for (const char* column : {"Nota_Saida", "Saldo"}) {
    desk.Do({{"do", "row"}, {"control", "DBGrid1"}, {"row", 1}, {"column", column}});
    for (const char* page : {"TabSheet3", "TabSheet5"}) {
      desk.Page(page);
      EXPECT_EQ(desk.Property("PageControl1", "page").String(), "TabSheet2");
    }
  }
  desk.Click("BtComposicao");
  EXPECT_EQ(Detail(desk),
            "Composição do saldo de Novembro / 2026: Saldo anterior 1000.0000; Valor Receber 69.0000; Saldo "
            "1069.0000;");
  desk.Key("DBGrid1", 2, "Valor_Pag", "F4");
  EXPECT_EQ(desk.Column("TbDetalha", "Numero"), "P1");
  desk.Key("DBGrid2", 0, "Numero", "F4");
  desk.Cell("DBGrid1", 1, "Nota_Saida", "5");
  desk.Key("DBGrid1", 1, "Nota_Saida", "Tab");
  desk.Do({{"do", "row"}, {"control", "DBGrid1"}, {"row", 0}, {"column", "Periodo"}});
  desk.Page("TabSheet5");
  EXPECT_EQ(desk.Rows("TbGrafico"),
            "Saldo Inicial.|0.0000|0.0000|1000.0000\nNovembro / 2026|69.0000|-5.0000|1064.0000\nDezembro / "
            "2026|0.0000|-30.0000|1034.0000\n");
  // A day outside all weeks is in a period of its own, which no balance counts; every day by its name.
  Run("DELETE FROM TABPRZ_001 WHERE DT_FIM >= '12/01/2026'");
  Gather(desk, {{"RgGrupo", "1"}});
  EXPECT_EQ(desk.Read("TbRelatorio", {"CodPer", "Periodo", "Saldo"}),
            "|Sem prazo cadastrado|-\n00|Saldo Inicial.|1000.0000\n2026-11-23| 23/11/2026 / "
            "29/11/2026|1069.0000\n");
  Gather(desk, {{"RgGrupo", "2"}, {"CbTodosDias", "true"}}, "22/11/2026", "24/11/2026");
  EXPECT_EQ(desk.Read("TbRelatorio", {"CodPer", "Periodo", "Saldo"}),
            "00|Saldo Inicial.|1000.0000\n20261122|22/11/2026 - Domingo|1000.0000\n20261123|23/11/2026 - "
            "Segunda|1000.0000\n20261124|24/11/2026 - Terça|1009.0000\n");
  // Cancelled, what was gathered until then stays, and no sum of an earlier one beside it.
  const auto sums = [&] {
    return desk.Column("TbRelatorio", "Saldo") + "|" + desk.Rows("TbMenor") + desk.Rows("TbClasseData") +
           desk.Caption("LbMenor") + desk.Text("TotRec") + desk.Caption("LbConsulta");
  };
  Gather(desk, {{"CbClasse", "true"}});
  const std::string whole = sums();
  EXPECT_EQ(desk.Cancelled("BitBtn29", "Títulos a receber"), "error: Operação cancelada.");
  EXPECT_EQ(sums(), "1000.0000|0,00A última consulta não terminou: faltam lançamentos.");
  EXPECT_EQ(desk.Column("TbDetalha", "Numero"), "R1 R2");
  EXPECT_EQ(desk.Press("BitBtn29"), "");
  EXPECT_EQ(sums(), whole);
  EXPECT_EQ(Tables("ENTIDADE_001 CONTACOR_001 CADCONTA_001"), before);
}

TEST_F(AnaliseTest, Printed) {
  Put(Receber{.numero = "R1", .dt_vencto = "11/25/2026"});
  Put(Receber{.numero = "R2", .dt_vencto = "11/26/2026", .valor2 = 500, .status = "O"});
  Put(Receber{.numero = "C1", .dt_vencto = "12/09/2026", .valor2 = 60, .status = "CH", .numero_ch = "77"});
  for (const char* dia : {"11/30/2026", "12/01/2026", "12/02/2026", "12/03/2026", "12/04/2026"})
    Put(Pagto{.num_ap = std::string("P") + dia[4], .dt_ven = dia, .num_os = "2101", .valor = 330});
  Purchase("1", "12/08/2026", "MOEDA = '4'");
  Desk desk(database_, At{"TfmRelAnaliseFluxo"});
  Gather(desk, {{"RgGrupo", "2"}, {"CbClasse", "true"}});
  desk.Check("CbCheRec", false);
  desk.Cell("DBGrid1", 1, "Nota_Entrada", "12,34");
  desk.Key("DBGrid1", 1, "Nota_Entrada", "Tab");
  ExpectFile(test::Printed(desk, "BitBtn33"), ORV_FILES "WCCAnaliseFluxo.txt");

  // A house's own layout narrows the rows to what it names, of the period on which the screen stands.
  std::filesystem::create_directory(folder_.Path() / "relatorios");
  Written("relatorios/WCCAnaliseFluxo.rel",
          "relatorio Pagamentos\nsubtitulo De[Filtra(\"Valor_Pag > 0\")]\ndados TbDetalha\n"
          "coluna 20 Número\ndetalhe\n| [TbDetalha.Numero] |\n");
  desk.Stand("DBGrid1", 3);
  const std::string narrowed = test::Printed(desk, "BitBtn33");
  EXPECT_EQ(narrowed.substr(narrowed.rfind("-\n") + 2), "P0\n");
}

}  // namespace
}  // namespace orv::test
