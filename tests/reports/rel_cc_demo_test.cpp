// The demonstrative of the coming days: its figures, its edges, what it prints.
#include "tests/support/desk_test.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

class DemoTest : public DeskTest {
 protected:
  static constexpr const char* kTudo[] = {"CbComVen", "CbAnual", "CbPed", "CbLim"};
  // Confirms; the rows as text.
  static std::string Gathered(Desk& desk, const Fields& fields, std::initializer_list<const char*> shown) {
    desk.Fill(fields);
    EXPECT_EQ(desk.Press("BitBtn29"), "");
    return desk.Read("TbRelPer", shown);
  }
  // The sum of a detail list's open amounts.
  static Currency Detail(Desk& desk, const char* grid, int row, const char* column) {
    desk.DoubleClick(grid, row, column);
    Currency sum;
    for (const Json& out : desk.Latest()) {
      if (!(out["on"] == Json("detail"))) continue;
      for (const Json& line : out["rows"].Items()) {
        const auto& cells = line.Items();
        const auto amount = [&](std::size_t at) {
          return at < cells.size() && cells[at].IsString() ? Currency::ParseNeutral(cells[at].String())
                                                           : Currency();
        };
        sum += amount(5) - amount(6) + amount(7) - amount(8) - amount(9);
      }
    }
    desk.Answer("ok");
    return sum;
  }
};

TEST_F(DemoTest, EveryFigureOfTheDemoCompanies) {
  Run("UPDATE RECEBER_001 SET SITUACAO = '7' WHERE NUMERO LIKE '%1'");
  Desk desk(database_, At{"TfmRelCCDemo"});
  for (const char* option : kTudo) desk.Check(option, true);
  desk.Set("EdtDias", "7, 30, 400");
  desk.Set("EdtSitDup", "'0','1'");
  // All companies come first: what follows is of the first one again.
  std::string figures;
  for (const bool all : {true, false}) {
    desk.Check("CbEmp", all);
    ASSERT_EQ(desk.Press("BitBtn29"), "");
    for (const char* set : {"TbRelPer", "tbAnual", "TbBanco", "TbPed"})
      figures += std::string("##### ") + set + "\n" + desk.Rows(set);
    // A figure opens what adds up to it.
    const auto rows = desk.Read("TbRelPer");
    for (const char* column : {"Vlr_receb", "Vlr_pagar", "Vlr_Compra", "Vlr_Venda", "Vlr_Ped"})
      EXPECT_EQ(Detail(desk, "DBGrid1", 3, column), Currency::ParseNeutral(rows[3].at(column))) << column;
  }
  ExpectFile(figures, ORV_FILES "demo_figures.txt");
}

TEST_F(DemoTest, HorizonsAndWhatIsPrinted) {
  Empty("RECEBER_001 PAGTO_001 PEDIDO_001 PED_ITEN_001 COMPRA_001 CO_ITEN_001");
  const char* const received[][4] = {{"T1", "11/19/2026", "100", "901"},
                                     {"T2", "11/20/2026", "50.55", "901"},
                                     {"T3", "11/25/2026", "30", ""},
                                     {"T4", "11/26/2026", "7", "902"},
                                     {"T5", "01/01/2150", "9", ""}};
  for (const auto& t : received)
    Put(Receber{
        .numero = t[0], .dt_emissao = "11/02/2026", .dt_vencto = t[1], .valor2 = t[2], .banco = t[3]});
  Put(Receber{.numero = "T6", .valor2 = "1000", .status = "O"});
  // Paid too much: open amounts fall by it, but not those that are overdue.
  Put(Pagto{.num_ap = "1", .dt_ven = "11/01/2026", .val_pag = "120"});
  Put(Pagto{.num_ap = "2", .dt_ven = "11/02/2026", .val_pag = "60"});
  Put(Pagto{.num_ap = "3", .dt_ven = "11/22/2026", .val_pag = "103"});
  // In three parts; without terms; without a quantity; beyond the period.
  for (const auto& [number, day, terms, quantity] :
       {std::tuple("P1", "11/20/2026", "   030060090", 10), std::tuple("P2", "11/21/2026", "", 2),
        std::tuple("P3", "11/21/2026", "000", 0), std::tuple("P4", "12/25/2026", "000", 1)}) {
    Put(Pedido{.numero = number, .dt_fatura = day, .pgto = terms});
    Put(PedItem{.numero = number, .qtde = quantity});
  }
  // Of purchases nine slots count, and whole quantities.
  Put(Compra{.numero = "C1", .dt_entrega = "11/22/2026", .condicao = "003003003003003003003003003200"});
  Put(CoItem{.numero = "C1"});

  Desk desk(database_, At{"TfmRelCCDemo"});
  for (const char* option : kTudo) desk.Check(option, true);
  desk.Set({{"DtIni", "20/11/2026"}, {"DtFin", "05/12/2026"}});
  const auto names = [&](const char* days) { return Gathered(desk, {{"EdtDias", days}}, {"Grupo_Dias"}); };
  EXPECT_EQ(names(""), "Atraso\nNo Dia\nAte 0 dias\nMais de 0 dias\n");
  // The first horizon beyond the period is the last; a repeated one stands once.
  EXPECT_EQ(names("5,5, 10,,15,30,45"),
            "Atraso\nNo Dia\nAte 5 dias\nAte 10 dias\nAte 15 dias\nAte 30 dias\nMais de 30 dias\n");
  EXPECT_EQ(names("30,45,60"), "Atraso\nNo Dia\nAte 30 dias\nAte 45 dias\nMais de 45 dias\n");
  EXPECT_EQ(names("00000036500"), "Atraso\nNo Dia\nAte 00000036500 dias\nMais de 00000036500 dias\n");
  Gathered(desk, {{"EdtDias", "5, 6, 30"}}, {});
  ExpectFile(test::Printed(desk, "BitBtn33"), ORV_FILES "WCCDemo.txt");

  EXPECT_EQ(Gathered(desk, {{"CbComVen", "false"}}, {"Vlr_Compra", "Vlr_Venda", "Vlr_Ped"}),
            ReplaceAll("00000", "0", "0.0000|0.0000|0.0000\n") + "0.0000|0.0000|0.0000\n");
  // What isn't a number of days is refused, and nothing of the report is left.
  desk.Fill({{"EdtDias", "5, x"}});
  EXPECT_TRUE(desk.Press("BitBtn29").starts_with("error: \"x\" não é um número de dias."));
  EXPECT_EQ(desk.Rows("TbRelPer"), "");
  desk.Fill({{"EdtDias", "5"}});
  desk.Set("DtIni", "");
  EXPECT_EQ(desk.Press("BitBtn29"), "error: Preencha as duas datas do período de vencimento.");
}

}  // namespace
}  // namespace orv::test
