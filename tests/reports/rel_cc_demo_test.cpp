// The demonstrative of the coming days: its figures reckoned a second time, its edges, what it prints.
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

  using Days = std::map<Date, Currency>;
  static Currency Between(const Days& days, Date from, Date to) {
    Currency sum;
    for (const auto& [day, amount] : days)
      if (day >= from && day <= to) sum += amount;
    return sum;
  }
  // Parts what is worth `total` by the slots of `terms`.
  static void Part(Days& days, Date base, Currency total, const std::string& terms, std::size_t slots) {
    std::vector<int> parts;
    std::size_t count = 0;
    for (std::size_t at = 0; at < slots; ++at) {
      const std::string slot(Trim(at * 3 < terms.size() ? terms.substr(at * 3, 3) : ""));
      parts.push_back(slot.empty() ? 0 : std::stoi(slot));
      count += slot.empty() ? 0 : 1;
    }
    parts.resize(count);
    for (Currency left = total; const int day : parts) {
      const Currency share = --count > 0 ? (total / static_cast<double>(parts.size())).Round2() : left;
      days[base.AddDays(day)] += share;
      left -= share;
    }
  }
  // The rows of a statement for each company; {} is its suffix.
  std::vector<std::vector<Value>> Rows(const std::string& sql, bool all) {
    auto rows = Db().Rows(ReplaceAll(sql, "{}", "_001"));
    if (all) std::ranges::move(Db().Rows(ReplaceAll(sql, "{}", "_002")), std::back_inserter(rows));
    Db().CommitRetaining();
    return rows;
  }
  Currency Sum(const std::string& sql, bool all) {
    Currency sum;
    for (const auto& row : Rows("SELECT CAST(SUM(" + sql, all)) sum += row[0].AsCurrency();
    return sum;
  }
};

TEST_F(DemoTest, EveryFigureAgreesWithPlainSums) {
  Run("UPDATE RECEBER_001 SET SITUACAO = '7' WHERE NUMERO LIKE '%1'");
  const Date today = Date::ParseNeutral(kToday), last = today.AddDays(185);
  Desk desk(database_, At{"TfmRelCCDemo"});
  for (const char* option : kTudo) desk.Check(option, true);
  desk.Set("EdtDias", "7, 30, 400");
  desk.Set("EdtSitDup", "'0','1'");
  // All companies come first: what follows is of the first one again.
  for (const bool all : {true, false}) {
    desk.Check("CbEmp", all);
    ASSERT_EQ(desk.Press("BitBtn29"), "");
    Days buying, selling, orders;
    for (const auto& row :
         Rows("SELECT C.DT_ENTREGA, C.CONDICAO, (SELECT SUM(I.PRECO * I.QTDE) FROM CO_ITEN{} I "
              "WHERE I.NUMERO = C.NUMERO AND I.SITUACAO = 'A') FROM COMPRA{} C",
              all))
      Part(buying, row[0].AsDate(), row[2].AsCurrency(), row[1].AsString(), 9);
    for (const auto& row :
         Rows("SELECT P.DT_FATURA, P.PGTO, (SELECT CAST(SUM(I.PRECO * I.QTDE) * (100 - P.PER_DESC) / 100 AS "
              "NUMERIC(18,4)) FROM PED_ITEN{} I WHERE I.NUMERO = P.NUMERO) FROM PEDIDO{} P",
              all)) {
      orders[row[0].AsDate()] += row[2].AsCurrency();
      if (row[0].AsDate() <= last) Part(selling, row[0].AsDate(), row[2].AsCurrency(), row[1].AsString(), 20);
    }
    const auto expect = [&](const std::string& name, const std::string& days, Date from, Date to, bool late) {
      const Currency receber =
                         Sum("VALOR2 + JUROS - VALOR_PAGO - VAL_DEV - DESCONTO) AS NUMERIC(18,4)) FROM "
                             "RECEBER{} WHERE STATUS = 'N' AND SITUACAO IN ('0', '1') AND DT_VENCTO" +
                                 days,
                             all),
                     pagar =
                         Sum("VALOR + JUROS - VAL_PAG - VAL_DEV - DESCONTO) AS NUMERIC(18,4)) FROM PAGTO{} "
                             "WHERE STATUS = 'N' AND DT_VEN" +
                                 days + (late ? " AND VALOR + JUROS > VAL_PAG + DESCONTO + VAL_DEV" : ""),
                             all);
      return name + "|" + receber.Neutral() + "|" + pagar.Neutral() + "|" +
             Between(buying, from, to).Neutral() + "|" + Between(selling, from, to).Neutral() + "|" +
             Between(orders, from, to).Neutral() + "\n";
    };
    const auto day = [](Date date) { return "'" + date.Sql() + "'"; };
    std::string expected = expect("Atraso", " < " + day(today), Date(2, 1, 1), Date(1, 1, 1), true) +
                           expect("No Dia", " = " + day(today), today, today, false);
    for (const int days : {7, 30, 400})
      expected += expect("Ate " + std::to_string(days) + " dias",
                         " BETWEEN " + day(today) + " AND " + day(today.AddDays(days)), today,
                         today.AddDays(days), false);
    expected += expect("Mais de 400 dias", " > " + day(today.AddDays(400)), today.AddDays(400),
                       Date(2100, 1, 1), false);
    EXPECT_EQ(
        desk.Read("TbRelPer", {"Grupo_Dias", "Vlr_receb", "Vlr_pagar", "Vlr_Compra", "Vlr_Venda", "Vlr_Ped"}),
        expected);
    // A figure opens what adds up to it.
    const auto rows = desk.Read("TbRelPer");
    for (const char* column : {"Vlr_receb", "Vlr_pagar", "Vlr_Compra", "Vlr_Venda", "Vlr_Ped"})
      EXPECT_EQ(Detail(desk, "DBGrid1", 3, column), Currency::ParseNeutral(rows[3].at(column))) << column;

    for (const auto& [set, field, sql] :
         {std::tuple(
              "tbAnual", "Valor",
              "VALOR2) AS NUMERIC(18,4)) FROM RECEBER{} WHERE UDF_YEAR(DT_EMISSAO) = 2026 AND SITUACAO "
              "IN ('0', '1')"),
          std::tuple(
              "tbAnual", "Val_Dev",
              "VAL_DEV) AS NUMERIC(18,4)) FROM RECEBER{} WHERE UDF_YEAR(DT_EMISSAO) = 2026 AND SITUACAO "
              "IN ('0', '1')"),
          std::tuple("TbBanco", "Valor",
                     "VALOR2 + JUROS - DESCONTO - VALOR_PAGO - VAL_DEV) AS NUMERIC(18,4)) FROM RECEBER{}"),
          std::tuple("TbPed", "Valor", "PRECO * QTDE) AS NUMERIC(18,4)) FROM PED_ITEN{}")}) {
      Currency sum;
      for (const Row& row : desk.Read(set)) sum += Currency::FromDouble(std::stod(row.at(field)));
      EXPECT_EQ(sum.Format2(), Sum(sql, all).Format2()) << set;
    }
  }
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
