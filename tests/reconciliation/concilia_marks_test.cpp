// The workbench: what is loaded, balances, ticks and their totals.
#include "tests/reconciliation/concilia_desk.h"
#include "tests/support/table.h"

namespace orv::test {
namespace {

TEST_F(ConciliaTest, LoadsByTheFilters) {
  Put(Movimento{.lancamento = "A1", .docto = "7'7"});
  Put(Movimento{.lancamento = "A2", .dt_cont = "11/20/2026", .operacao = "+", .grupo = "X"});
  Put(Movimento{.lancamento = "A3", .pendente = "N", .lanc_con = "000009"});
  Put(Movimento{.lancamento = "A4", .pendente = "C"});
  Put(Movimento{.lancamento = "A5", .dt_cont = "11/21/2026"});
  Put(Movimento{.lancamento = "A6", .dt_cont = "12/31/1999"});
  Put(Movimento{.lancamento = "A7", .conta = kOutraConta});
  Put(Extrato{.lancto = "E1", .docto = "7'7"});
  Put(Extrato{.lancto = "E2", .dt_cont = "11/20/2026", .operacao = "C"});
  Put(Extrato{.lancto = "E3", .conciliado = "S", .lanc_con = "000009"});
  Put(Extrato{.lancto = "E4", .conta = kOutraConta});
  Desk desk(database_, At{"TFmConcilia"});
  EXPECT_EQ(desk.Refused("BitBtn1"), "Selecione uma Conta. > EdtConta");
  desk.Set("EdtConta", kConta);

  // Whether what is listed can be tied, proposed, undone.
  for (const auto& c : Table(ORV_FILES "workbench.txt", 3)) {
    SCOPED_TRACE(c[0]);
    EXPECT_EQ(Consult(desk, Named(c[0])), c[1]);
    EXPECT_EQ(desk.Messages(), "");
    EXPECT_EQ(desk.EnabledOf({"BitBtn4", "BtSugerir", "BitBtn8"}), c[2]);
  }
  EXPECT_EQ(Consult(desk, {{"DtFinal", ""}}), " / ");
  Consult(desk, {{"DtInicio", "01/01/2000"}, {"DtFinal", "20/11/2026"}, {"RgBusca", "A conciliar"}});
  EXPECT_EQ(desk.Rows("TbMov"),
            "S|D|A1|7'7|2026-11-09|2026-11-10|2026-11-12|3104|MATERIAL DE CONSUMO|100.0000|019|OBS||-\n"
            "S|C|A2|1|2026-11-09|2026-11-20|2026-11-12|X|-|100.0000|019|OBS||-\n");
  EXPECT_EQ(desk.Rows("TbArq"),
            "N|D|E1|7'7|2026-11-11|-|100.0000|-|LINHA|EXTRATO_||-\n"
            "N|C|E2|1|2026-11-20|-|100.0000|-|LINHA|EXTRATO_||-\n");
}

TEST_F(ConciliaTest, BalancesUpToTheLastDay) {
  Put(Movimento{.lancamento = "A1", .valor = "10.05", .pendente = "N"});
  Put(Movimento{.lancamento = "A2", .valor = "1000.10", .operacao = "+", .pendente = "N"});
  Put(Movimento{.lancamento = "A3", .dt_cont = "01/01/1990", .valor = "7", .operacao = "+"});
  Put(Movimento{.lancamento = "A4", .valor = "2", .pendente = "C"});
  Put(Movimento{.lancamento = "A5", .dt_cont = "11/21/2026", .valor = "500"});
  Put(Extrato{.lancto = "E1", .valor = "3.33"});
  Put(Extrato{.lancto = "E2", .valor = "1000", .operacao = "C", .conciliado = "S"});
  Desk desk(database_);
  Open(desk);
  const auto shown = [&] {
    std::string text;
    for (const char* edit :
         {"EdtSaldoMov", "EdtSaldoMovCon", "EdtSaldoExt", "EdtSaldoExtCon", "EdtCodBan", "EdtBanco"}) {
      text += desk.Text(edit) + "|";
    }
    return text;
  };
  const std::string bank = Sql("SELECT NOME_BANCO FROM CADBAN_001 WHERE BANCO = '901'");
  EXPECT_EQ(shown(), "995,05|990,05|996,67|1.000,00|901|" + bank + "|");
  EXPECT_NE(desk.Text("EdtDescConta"), "");
  // An account without movements shows nothing, whatever the master says.
  desk.Set("EdtConta", kOutraConta);
  EXPECT_EQ(shown(), "0,00|0,00|0,00|0,00|||");
  EXPECT_EQ(desk.Text("EdtDescConta"), "");
  desk.Set("EdtConta", "no such");
  EXPECT_EQ(shown(), "0,00|0,00|0,00|0,00|||");
}

TEST_F(ConciliaTest, ATickIsPostedAndMovesOn) {
  Put(Movimento{.lancamento = "A1", .valor = "0.10", .operacao = "+"});
  Put(Movimento{.lancamento = "A2", .valor = "0.20", .operacao = "+"});
  Put(Movimento{.lancamento = "A3", .valor = "100"});
  Put(Extrato{.lancto = "E1", .valor = "0.30", .operacao = "C"});
  Put(Extrato{.lancto = "E2", .valor = "40"});
  const std::string before = All();
  Desk desk(database_);
  Consult(Open(desk));
  EXPECT_EQ(Totals(desk), "0,00 0,00 0,00");
  TickMov(desk, 0);
  EXPECT_EQ(RowOf(desk, "TbMov"), 1);
  TickMov(desk, 1);
  // Both sets end in a debit.
  EXPECT_EQ(Totals(desk), "0,30 0,00 0,30");
  TickArq(desk, 0);
  EXPECT_EQ(Totals(desk), "0,30 0,30 0,00");
  TickMov(desk, 2);
  EXPECT_EQ(Totals(desk), "-99,70 0,30 -100,00");
  EXPECT_EQ(RowOf(desk, "TbMov"), 2);
  EXPECT_EQ(RowOf(desk, "TbArq"), 1);
  TickMov(desk, 1, false);
  EXPECT_EQ(Totals(desk), "-99,90 0,30 -100,20");
  EXPECT_EQ(Ticked(desk), "A1 A3 / E1");

  // Ends of different sides show no difference, whatever the totals.
  Run("UPDATE EXTRATO_001 SET OPERACAO = 'C' WHERE LANCTO = 'E2'");
  EXPECT_EQ(Consult(desk), "A1 A2 A3 / E1 E2");
  TickMov(desk, 2);
  EXPECT_EQ(Totals(desk), "-100,00 0,00 0,00");

  // A click on a title changes nothing; the tick after it moves on again.
  desk.Title("OrvDBGrid1", "Valor");
  TickMov(desk, 0);
  EXPECT_EQ(RowOf(desk, "TbMov"), 1);
  EXPECT_EQ(Ticked(desk), "A1 A3 / ");

  // Dates can be edited on the side of the movements, and nowhere else; nothing reaches the tables.
  const auto cell = [&](const char* grid, const char* column, const char* value) {
    desk.Cell(grid, 0, column, value);
    return desk.Messages();
  };
  EXPECT_EQ(cell("OrvDBGrid1", "Data", "01/02/2026"), "");
  EXPECT_EQ(cell("OrvDBGrid1", "Data_Vencto", "02/02/2026"), "");
  for (const char* column : {"Valor", "Operacao", "Docto"})
    EXPECT_EQ(cell("OrvDBGrid1", column, "1"), "error: Esta coluna é só de leitura.");
  EXPECT_EQ(cell("OrvDBGrid2", "Data", "01/02/2026"), "error: Esta coluna é só de leitura.");
  desk.Focus("OrvDBGrid1");
  cell("OrvDBGrid1", "Data", "03/02/2026");
  desk.Focus("EdtDocto");
  EXPECT_EQ(desk.SetOf("TbMov")["state"].String(), "browse");
  EXPECT_TRUE(desk.Rows("TbMov").starts_with("N|C|A1|1|2026-11-09|2026-02-03|2026-02-02|"))
      << desk.Rows("TbMov");
  for (const char* what : {"append", "delete"}) {
    desk.Do({{"do", what}, {"control", "OrvDBGrid1"}, {"row", 0}});
    EXPECT_TRUE(desk.Messages().starts_with("error: Aqui não se")) << desk.Messages();
  }
  EXPECT_EQ(All(), before);
}

TEST_F(ConciliaTest, WhatIsClearedOutsideIsNoTick) {
  Put(Movimento{.lancamento = "A1", .valor = "5", .pendente = "C"});
  Put(Movimento{.lancamento = "A2", .valor = "7", .pendente = "N"});
  Desk desk(database_);
  EXPECT_EQ(Consult(Open(desk), {{"RgBusca", "Todos"}}), "A1 A2 / ");
  EXPECT_EQ(Totals(desk), "-7,00 0,00 0,00");
}

TEST_F(ConciliaTest, PostsFromWithin) {
  Put(Movimento{.lancamento = "A1"});
  Desk desk(database_);
  Consult(Open(desk));
  desk.Click("BitBtn5");
  EXPECT_EQ(desk.Top(), "TFmCCLancFluxo");
  EXPECT_EQ(desk.Text("EdtConta"), kConta);
  EXPECT_NE(desk.Text("EdtDescConta"), "");
  Put(Movimento{.lancamento = "A2"});
  desk.Click("BitBtn2");
  EXPECT_EQ(desk.Top(), "TFmConcilia");
  EXPECT_EQ(Listed(desk), "A1 A2 / ");
}

}  // namespace
}  // namespace orv::test
