// The figures of the statement reckoned a second time, by plain sums in the database.
#include "host/services/calendar.h"
#include "tests/cashflow/fluxo_test.h"

namespace orv::test {
namespace {

class SecondSumTest : public FluxoTest {
 protected:
  // Adds what a statement gives by day (first column) and amount, the day moved where `moved`.
  void Add(std::map<std::string, Currency>& days, const std::string& kind, const std::string& sql, bool moved,
           Date from, Date to) {
    for (const auto& row : Db().Rows(sql)) {
      Date day = row[0].AsDate();
      while (moved && (day.WeekDay() == 0 || day.WeekDay() == 6 || IsBankHoliday(day))) day = day.AddDays(1);
      if (day >= from && day <= to) days[day.Neutral() + " " + kind] += row[1].AsCurrency();
    }
    Db().CommitRetaining();
  }
  static std::string Text(const std::map<std::string, Currency>& days) {
    std::string text;
    for (const auto& [key, amount] : days)
      if (!amount.IsZero()) text += key + " " + amount.Neutral() + "\n";
    return text;
  }
};

TEST_F(SecondSumTest, EveryDayAgrees) {
  const Date from(2026, 10, 1), to(2027, 3, 31);
  const std::string until = "'" + to.Sql() + "'",
                    range = " BETWEEN '" + from.AddDays(-3).Sql() + "' AND " + until;
  // The demo may expect no cheque of one kind in the period.
  Put(Cheque{.chave = "KX", .valor = "12.34", .vencimento = "11/28/2026", .tipo = "P"});
  Put(Receber{.numero = "CHX", .dt_vencto = "11/28/2026", .valor2 = "5.67", .status = "CH"});
  for (const bool all : {false, true}) {
    std::map<std::string, Currency> expected;
    for (const std::string company : {"_001", "_002"}) {
      if (!all && company == "_002") continue;
      const auto add = [&](const char* kind, const std::string& sql, bool moved) {
        Add(expected, kind, sql, moved, from, to);
      };
      for (const auto& [kind, status] : {std::pair{"receb", "N"}, std::pair{"chrec", "CH"}})
        add(kind,
            "SELECT DT_VENCTO, SUM(VALOR2 - VALOR_PAGO - VAL_DEV - DESCONTO + JUROS) FROM RECEBER" + company +
                " WHERE STATUS = '" + status +
                "' AND VALOR2 - VALOR_PAGO - VAL_DEV - DESCONTO + JUROS > 0 AND DT_VENCTO" + range +
                " GROUP BY 1",
            true);
      add("pagar",
          "SELECT DT_VEN, SUM(VALOR - VAL_PAG - VAL_DEV - DESCONTO + JUROS) FROM PAGTO" + company +
              " WHERE STATUS = 'N' AND VALOR - VAL_PAG - DESCONTO + JUROS > 0 AND DT_VEN" + range +
              " GROUP BY 1",
          true);
      add("chpag",
          "SELECT VENCIMENTO, SUM(VALOR) FROM CHEQUE_PRE" + company +
              " WHERE STATUS = 'P' AND TIPO = 'P' AND VENCIMENTO" + range + " GROUP BY 1",
          true);
      // Item by item, so that a price with many places would show.
      add("venda",
          "SELECT P.DT_FATURA, CAST(SUM(I.PRECO * I.QTDE * (100 - P.PER_DESC) / 100) AS NUMERIC(18,4)) FROM "
          "PEDIDO" +
              company + " P JOIN PED_ITEN" + company + " I ON I.NUMERO = P.NUMERO GROUP BY 1, P.NUMERO",
          false);
      Add(expected, "compra",
          "SELECT P.DT_ENTREGA, CAST(SUM(I.PRECO * I.QTDE - I.PRECO * I.QTDE_B) AS NUMERIC(18,4)) FROM "
          "COMPRA" +
              company + " P JOIN CO_ITEN" + company +
              " I ON I.NUMERO = P.NUMERO AND I.SITUACAO = 'A' WHERE P.DT_ENTREGA BETWEEN '" + from.Sql() +
              "' AND " + until + " GROUP BY 1, P.NUMERO",
          true, from, to.AddDays(9));
    }
    Desk desk(database_, At{"TfmRelFluxo"});
    Fill(desk, from.Brazil(), to.Brazil(),
         {{"CbVenCom", "true"}, {"CbCheque", "true"}, {"CbEmp", all ? "true" : "false"}});
    desk.Click("BitBtn29");
    ASSERT_EQ(desk.Messages(), "");
    std::map<std::string, Currency> gathered;
    const std::pair<const char*, const char*> kinds[] = {
        {"Vlr_receb", "receb"},     {"Vlr_pagar", "pagar"}, {"Vlr_ChequeRec", "chrec"},
        {"Vlr_ChequePag", "chpag"}, {"Vlr_Venda", "venda"}, {"Vlr_Compra", "compra"}};
    std::map<std::string, int> rows;
    for (const Row& row : desk.Read("TbRelatorio")) {
      for (const auto& [field, kind] : kinds) {
        if (row.at(field) == "-" || row.at(field) == "0.0000") continue;
        gathered[row.at("DtLanc") + " " + kind] += Currency::ParseNeutral(row.at(field));
        ++rows[kind];
      }
    }
    EXPECT_EQ(Text(gathered), Text(expected));
    EXPECT_EQ(rows.size(), 6U) << "a kind has no rows";

    // The balances, account by account.
    std::string saldos;
    const std::string ledger =
        all ? "(SELECT * FROM CONTACOR_001 UNION ALL SELECT * FROM CONTACOR_002)" : "CONTACOR_001";
    for (const auto& row :
         Db().Rows("SELECT CONTA, SUM(DECODE(OPERACAO, '+', VALOR, -VALOR)) FROM " + ledger +
                   " M WHERE PENDENTE = 'N' AND DT_CONT <= '11/20/2026' AND CONTA IN (SELECT CONTA FROM "
                   "CADCONTA_001 WHERE IMP_FLUXO = 'S' UNION SELECT CONTA FROM CADCONTA_002 WHERE IMP_FLUXO "
                   "= 'S' AND 1 = " +
                   std::string(all ? "1" : "0") + ") GROUP BY 1 ORDER BY 1"))
      saldos += row[0].AsString() + "|" + Value(row[1].AsCurrency().ToDouble()).Neutral() + "\n";
    Db().CommitRetaining();
    EXPECT_EQ(desk.Read("TbSaldo", {"Conta", "Valor"}), saldos);
  }
}

// An order's instalments add up to the order, and are as many as its condition has days.
TEST_F(SecondSumTest, InstalmentsAddUp) {
  Desk desk(database_, At{"TfmRelFluxo"});
  Fill(desk, "01/01/1980", "31/12/2030", {{"CbVenCom", "true"}, {"CBCond", "true"}});
  desk.Click("BitBtn29");
  ASSERT_EQ(desk.Messages(), "");
  std::map<std::string, std::pair<Currency, int>> gathered, expected;
  for (const Row& row : desk.Read("TbRelatorio")) {
    if (row.at("Vlr_Venda") == "-" || !row.at("Historico").starts_with("PEDIDO")) continue;
    auto& order = gathered[row.at("Numero").substr(0, row.at("Numero").find('/'))];
    order.first += Currency::ParseNeutral(row.at("Vlr_Venda"));
    ++order.second;
  }
  for (const auto& row :
       Db().Rows("SELECT P.NUMERO, CAST(SUM(I.PRECO * I.QTDE * (100 - P.PER_DESC) / 100) AS NUMERIC(18,4)), "
                 "CHAR_LENGTH(TRIM(P.PGTO)) / 3 FROM PEDIDO_001 P JOIN PED_ITEN_001 I ON I.NUMERO = P.NUMERO "
                 "GROUP BY P.NUMERO, P.PGTO HAVING SUM(I.QTDE) > 0"))
    expected[row[0].AsString()] = {row[1].AsCurrency(), static_cast<int>(row[2].AsInteger())};
  ASSERT_GT(expected.size(), 10U);
  EXPECT_EQ(gathered, expected);
}

}  // namespace
}  // namespace orv::test
