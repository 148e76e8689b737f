// The figures of a year, what stands behind them, and what is printed.
#include <numeric>
#include <set>

#include "tests/support/desk_test.h"

namespace orv::test {
namespace {

using MesTest = DeskTest;

// Of a year that is running and of one that is over, narrowed in every way: what isn't zero.
TEST_F(MesTest, EveryFigureOfTheDemoCompany) {
  // Titles of a situation, open and closed; without a class; without a due date; of another status.
  Run("UPDATE RECEBER_001 SET CLASSE = '0' WHERE NUMERO LIKE '%1'");
  Run("UPDATE RECEBER_001 SET STATUS = 'O' WHERE NUMERO LIKE '%77%'");
  Run("UPDATE PAGTO_001 SET NUM_OS = NULL WHERE NUM_AP LIKE '%5'");
  Desk desk(database_, At{"TFmRelCCMes"});
  const Fields narrowed = {{"EdtAno", "2025"},          {"EdtEmiIni", "10/02/2025"},
                           {"EdtEmiFim", "20/10/2026"}, {"EdtRecIni", "15/03/2025"},
                           {"EdtRecFim", "30/11/2025"}, {"EdtVenIni", "05/01/2025"},
                           {"EdtVenFim", "15/12/2025"}, {"EdtCliente", "'00002','00004'"},
                           {"CbClientes", "1"},         {"EdtClasse", "'2101','3104'"}};
  std::string figures;
  for (const Fields& fields : {Fields(), narrowed}) {
    desk.Set(fields);
    ASSERT_EQ(desk.Press("BtnExecutaSQL"), "");
    for (const char* set : {"TbRel", "TbVencto", "TbEmi", "TbGrupo"}) {
      figures += std::string("##### ") + set + "\n";
      for (const Row& row : desk.Read(set)) {
        for (const auto& [field, value] : row)
          if (value != "-" && value != "0") figures += field + " " + value + "; ";
        figures += "\n";
      }
    }
  }
  ExpectFile(figures, ORV_FILES "mes_figures.txt");
  // What isn't a year leaves the months empty, and the periods as they are.
  const std::string kept = desk.Read("TbRel", {"EmiPer", "PrazoMedVMes5"});
  desk.Set("EdtAno", "ano");
  EXPECT_EQ(desk.Press("BtnExecutaSQL"), "");
  EXPECT_EQ(desk.Read("TbRel", {"EmiPer", "PrazoMedVMes5"}) + desk.Read("TbRel", {"EmiMes5"}), kept + "0\n");
  EXPECT_EQ(desk.Rows("TbGrupo"), "");
}

TEST_F(MesTest, BanksLookUpsAndWhatIsPrinted) {
  Empty("RECEBER_001 RECEBERB_001 PAGTO_001 PAGTO1_001 PEDIDO_001 PED_ITEN_001");
  const char* const titles[][6] = {{"T1", "01/05/2026", "01/05/2026", "100", "100", "901"},
                                   {"T2", "02/10/2026", "03/12/2026", "250.50", "50", "901"},
                                   {"T3", "02/28/2026", "06/30/2026", "80", "0", "902"},
                                   {"T4", "12/31/2025", "01/15/2026", "7", "0", "901"}};
  for (const auto& t : titles)
    Put(Receber{.numero = t[0],
                .dt_emissao = t[1],
                .dt_vencto = t[2],
                .valor2 = t[3],
                .valor_pago = t[4],
                .classe = t[0][1] == '2' ? "0" : "1101",
                .banco = t[5]});
  Put(Receberb{.numero = "T1", .dt_pagto = "01/05/2026", .valor_pago = "100"});
  Put(Receberb{.numero = "T2", .dt_pagto = "04/01/2026", .valor_pago = "50"});
  Put(Pagto{.num_ap = "1", .dt_emi = "01/02/2026", .dt_ven = "02/01/2026", .valor = "60", .val_pag = "60"});
  Put(Pagto{.num_ap = "2", .dt_emi = "01/31/2026", .dt_ven = "12/01/2026", .num_os = "", .valor = "90"});
  Put(Pagto1{.num_ap = "1", .val_pag = "60"});
  Run("UPDATE PAGTO1_001 SET DT_LAN = '02/01/2026'");
  Put(Pedido{.numero = "P1", .dt_fatura = "12/24/2026"});
  Put(PedItem{.numero = "P1"});

  Desk desk(database_, At{"TFmRelCCMes"});
  // A bank is chosen from its list, which types nothing.
  desk.Set("EdtBanco", "901");
  EXPECT_EQ(desk.Text("EdtBanco"), "");
  desk.Click("PqBanco");
  desk.Choose("901");
  EXPECT_EQ(desk.Text("EdtBanco"), "'901'");
  EXPECT_EQ(desk.Press("BtnExecutaSQL"), "");
  // It narrows the months of receivables, not the totals nor the terms.
  EXPECT_EQ(desk.Read("TbRel", {"EmiMes2", "PenMes6", "EmiPer", "PedMes12", "PagMes2"}),
            "250.5|0|437.5|100|60\n");
  desk.Click("SpeedButton1");
  EXPECT_EQ(desk.Press("BtnExecutaSQL"), "");
  EXPECT_EQ(desk.Read("TbRel", {"EmiMes2", "PenMes6"}), "330.5|80\n");
  ExpectFile(Printed(desk, "BtnImprimir"), ORV_FILES "WCCMes.txt");
  // A figure opens its rows.
  const char* const figures[][5] = {
      {"TsMeses", "DBGrid1", "1", "Faturado", "T2 T3 "}, {"TsMeses", "DBGrid1", "0", "Vencido", "T1 T4 "},
      {"TsMeses", "DBGrid1", "1", "Pagos", "000001 "},   {"TsGrupos", "DBGrid2", "0", "Mes6", "T3 "},
      {"TsGrupos", "DBGrid2", "1", "Total", "T2 "},      {"TsPeriodo", "DBGrid3", "0", "VenPer", "T2 T3 T4 "},
      {"TsPeriodo", "DBGrid4", "0", "Val_30Dia", "T2 "}, {"TsPeriodo", "DBGrid4", "0", "Val_Maior", "T3 "},
      {"TsPeriodo", "DBGrid4", "0", "Val_00Dia", "T1 "}, {"TsPeriodo", "DBGrid5", "0", "Val_5Sem", "T4 "}};
  for (const auto& [page, grid, row, column, rows] : figures) {
    desk.Page(page);
    desk.DoubleClick(grid, std::stoi(row), column);
    std::set<std::string> numbers;
    for (const Json& out : desk.Latest()) {
      if (!(out["on"] == Json("detail"))) continue;
      for (const Json& line : out["rows"].Items()) numbers.insert(line.Items()[1].String() + " ");
    }
    EXPECT_EQ(std::accumulate(numbers.begin(), numbers.end(), std::string()), rows) << column;
    desk.Answer("ok");
  }
}

}  // namespace
}  // namespace orv::test
