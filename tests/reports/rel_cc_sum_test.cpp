// The same figures reckoned a second time: sums by day, account and sign in plain SQL, over the demo
// companies and over many more movements than are brought together at once.
#include <algorithm>

#include "tests/reports/rel_cc_desk.h"
#include "toolkit/currency.h"

namespace orv::test {
namespace {

class SecondSumTest : public RelCcTest {
 protected:
  // day|account|sign to an amount.
  using Sums = std::map<std::string, Currency>;

  static std::string Text(const Sums& sums) {
    std::string text;
    for (const auto& [key, amount] : sums) text += key + " " + amount.Neutral() + "\n";
    return text;
  }
  // `source` is a table of movements, `narrowed` a condition on them.
  Sums Reckon(const std::string& source, const std::string& date, const std::string& narrowed) {
    Sums sums;
    for (const auto& row : Db().Rows("SELECT " + date + ", CONTA, OPERACAO, SUM(VALOR) FROM " + source +
                                     " M WHERE " + narrowed + " GROUP BY 1, 2, 3")) {
      sums[row[0].Neutral() + "|" + row[1].AsString() + "|" + row[2].AsString()] += row[3].AsCurrency();
    }
    Db().CommitRetaining();
    return sums;
  }
  Currency Balance(const std::string& source, const std::string& narrowed) {
    const Value sum = Db().Scalar("SELECT SUM(DECODE(OPERACAO, '+', VALOR, '-', -VALOR)) FROM " + source +
                                  " M WHERE " + narrowed);
    Db().CommitRetaining();
    return sum.AsCurrency();
  }

  struct Question {
    Fields fields;
    const char *date, *field;  // the period's date in the table and in the set
    std::string source, narrowed;
    Date from, to;
  };
  // The report's rows add up to the sums, and its balances go from the one before to the one after.
  void Agrees(const Question& question) {
    Desk desk(database_);
    Open(desk, question.fields);
    Period(desk, question.from.Brazil(), question.to.Brazil());
    desk.Click("BitBtn29");
    ASSERT_EQ(desk.Messages(), "");
    std::vector<Row> rows = desk.Read("TbRelatorio");
    ASSERT_GT(rows.size(), 100U);
    const std::string dates = question.narrowed + " AND " + question.date;
    const std::string until = "'" + question.to.Sql() + "'";
    Sums gathered;
    for (const Row& row : rows) {
      gathered[row.at(question.field) + "|" + row.at("Conta") + "|" + row.at("Operacao")] +=
          Currency::ParseNeutral(row.at("Valor"));
    }
    EXPECT_EQ(Text(gathered), Text(Reckon(question.source, question.date,
                                          dates + " BETWEEN '" + question.from.Sql() + "' AND " + until)));
    const auto cents = [](const std::string& balance) {
      return Currency::FromDouble(std::stod(balance)).Neutral();
    };
    // The balance before is in whole cents; what follows isn't rounded.
    const Currency opening = Balance(question.source, dates + " < '" + question.from.Sql() + "'");
    const Currency closing = Balance(question.source, dates + " <= " + until);
    EXPECT_EQ(cents(rows.front().at("SaldoIni")), opening.Round2().Neutral());
    EXPECT_EQ(cents(rows.back().at("Saldo")), (closing - opening + opening.Round2()).Neutral());
    // Row by row, and the number within the day.
    Currency balance = Currency::FromDouble(std::stod(rows.front().at("SaldoIni")));
    std::string before;
    for (const Row& row : rows) {
      const Currency amount = Currency::ParseNeutral(row.at("Valor"));
      balance += row.at("Operacao") == "+" ? amount : -amount;
      ASSERT_EQ(cents(row.at("Saldo")), balance.Neutral()) << row.at("Lancamento");
      const std::string place = row.at(question.field) + row.at("Lancamento");
      ASSERT_LE(before, place);
      before = place;
    }
  }

  // The titles that a movement's number settles, each once, as plain counts and sums.
  void TitlesAgree(const std::string& first, const std::string& last) {
    Desk desk(database_);
    Open(desk, {{"RgTipo", "1"}, {"RelConta", ""}, {"RelCodBan", ""}, {"CbFinanceiro", "true"}});
    Period(desk, first, last);
    desk.Click("BitBtn29");
    ASSERT_EQ(desk.Messages(), "");
    std::map<std::string, std::pair<Currency, int>> gathered, expected;
    for (const Row& row : desk.Read("TbFinan")) {
      auto& sum = gathered[row.at("Lancto") + "|" + row.at("Tipo")];
      sum.first += Currency::ParseNeutral(row.at("Val_Pag"));
      ++sum.second;
    }
    const std::string within =
        " AND M.DT_CONT BETWEEN '" + Date::ParseBrazil(first).Sql() + "' AND '" +
        Date::ParseBrazil(last).Sql() +
        "' AND M.CONTA IN (SELECT CONTA FROM CADCONTA_001 WHERE IMP_FLUXO = 'S') GROUP BY 1, 2";
    for (const char* sql : {"SELECT M.LANCAMENTO, M.TIPO, SUM(B.VALOR_PAGO), COUNT(*) FROM CONTACOR_001 M "
                            "JOIN RECEBERB_001 B ON B.LANCAMENTO = M.LANCAMENTO WHERE M.TIPO = 'R'",
                            "SELECT M.LANCAMENTO, M.TIPO, SUM(B.VAL_PAG), COUNT(*) FROM CONTACOR_001 M JOIN "
                            "PAGTO1_001 B ON B.LANCAMENTO = M.LANCAMENTO WHERE M.TIPO = 'P'"}) {
      for (const auto& row : Db().Rows(sql + within)) {
        expected[row[0].AsString() + "|" + row[1].AsString()] = {row[2].AsCurrency(),
                                                                 static_cast<int>(row[3].AsInteger())};
      }
    }
    Db().CommitRetaining();
    ASSERT_GT(expected.size(), 50U);
    EXPECT_EQ(gathered, expected);
  }
};

constexpr const char* kBoth = "(SELECT * FROM CONTACOR_001 UNION ALL SELECT * FROM CONTACOR_002)";
constexpr const char* kFlow = "CONTA IN (SELECT CONTA FROM CADCONTA_001 WHERE IMP_FLUXO = 'S')";
constexpr const char* kFlowOfBoth =
    "CONTA IN (SELECT CONTA FROM CADCONTA_001 WHERE IMP_FLUXO = 'S' UNION SELECT CONTA FROM CADCONTA_002 "
    "WHERE IMP_FLUXO = 'S')";
const Date kFrom(2026, 3, 15), kTo(2026, 10, 31);

TEST_F(SecondSumTest, TheDemoCompaniesAgree) {
  Agrees({{}, "DT_CONT", "DtCont", "CONTACOR_001", "CONTA = '10250-1'", kFrom, kTo});
  Agrees({{{"RgData", "0"}, {"RgBusca", "1"}},
          "DT_LAN",
          "DtLanc",
          "CONTACOR_001",
          "CONTA = '10250-1' AND PENDENTE <> 'S'",
          kFrom,
          kTo});
  const Fields all = {{"RgTipo", "1"}, {"RelConta", ""}, {"RelCodBan", ""}};
  Agrees({all, "DT_CONT", "DtCont", "CONTACOR_001", kFlow, kFrom, kTo});
  Fields companies = all;
  companies[0].second = "2";
  companies.push_back({"RgData", "2"});
  Agrees({companies, "DT_VENCTO", "DtVencto", kBoth, kFlowOfBoth, kFrom, kTo});
  TitlesAgree("15/03/2026", "31/10/2026");
}

TEST_F(SecondSumTest, ManyMovementsAgree) {
  // Each movement nine times more, some days apart, and one day with more rows than come together at once.
  Run("INSERT INTO CONTACOR_001 (LANCAMENTO, DOCTO, BANCO, CONTA, DT_LAN, DT_CONT, DT_VENCTO, VALOR, "
      "OPERACAO, GRUPO, HISTORICO, OBSERVACAO, TIPO, PENDENTE) SELECT CAST(RIGHT(M.LANCAMENTO, 5) AS "
      "VARCHAR(5)) || N.D, M.DOCTO, M.BANCO, M.CONTA, M.DT_LAN + N.D, M.DT_CONT + N.D, M.DT_VENCTO + N.D, "
      "M.VALOR + N.D * 0.0137, M.OPERACAO, M.GRUPO, M.HISTORICO, M.OBSERVACAO, 'L', M.PENDENTE FROM "
      "CONTACOR_001 M CROSS JOIN (SELECT 1 AS D FROM RDB$DATABASE UNION ALL SELECT 3 FROM RDB$DATABASE UNION "
      "ALL SELECT 5 FROM RDB$DATABASE) N");
  Run("UPDATE CONTACOR_001 SET DT_CONT = '07/07/2026' WHERE DT_CONT BETWEEN '05/01/2026' AND '08/30/2026' "
      "AND CONTA = '10250-1'");
  ASSERT_GT(Db().Scalar("SELECT COUNT(*) FROM CONTACOR_001").AsInteger(), 10000);
  Agrees({{}, "DT_CONT", "DtCont", "CONTACOR_001", "CONTA = '10250-1'", kFrom, kTo});
  Agrees(
      {{{"RgTipo", "1"}, {"RelConta", ""}, {"RelCodBan", ""}, {"EdtClasseIni", "2"}, {"EdtClasseFim", "31"}},
       "DT_CONT",
       "DtCont",
       "CONTACOR_001",
       std::string(kFlow) + " AND GRUPO BETWEEN '2' AND '31'",
       kFrom,
       kTo});
}

}  // namespace
}  // namespace orv::test
