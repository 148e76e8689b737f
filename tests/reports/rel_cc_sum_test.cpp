// The same rows and balances reckoned a second time, over the demo companies and over many more movements
// than are brought together at once.
#include <set>

#include "tests/reports/rel_cc_desk.h"
#include "toolkit/currency.h"

namespace orv::test {
namespace {

class SecondSumTest : public RelCcTest {
 protected:
  struct Question {
    Fields fields;
    const char *date, *field;  // the period's date in the table and in the set
    std::string source, narrowed;
  };
  // Each row stands in its order with its amount and the balance up to it, from the one before in whole
  // cents.
  void Agrees(const Question& q) {
    Desk desk(database_);
    Open(desk, q.fields);
    Period(desk, "15/03/2026", "31/10/2026");
    desk.Click("BitBtn29");
    ASSERT_EQ(desk.Messages(), "");
    const std::string rows = " FROM " + q.source + " M WHERE " + q.narrowed + " AND " + q.date;
    Currency balance =
        Db().Scalar("SELECT SUM(DECODE(OPERACAO, '+', VALOR, '-', -VALOR))" + rows + " < '03/15/2026'")
            .AsCurrency()
            .Round2();
    std::map<std::string, std::multiset<std::string>> wanted, found;
    std::string before;
    const auto gathered = desk.Read("TbRelatorio");
    ASSERT_GT(gathered.size(), 100U);
    for (const Row& row : gathered) {
      const Currency amount = Currency::ParseNeutral(row.at("Valor"));
      balance += row.at("Operacao") == "+" ? amount : -amount;
      ASSERT_EQ(Currency::FromDouble(std::stod(row.at("Saldo"))).Neutral(), balance.Neutral());
      const std::string place = row.at(q.field) + row.at("Lancamento");
      ASSERT_LE(before, place);
      before = place;
      found[place].insert(row.at("Conta") + row.at("Operacao") + row.at("Valor"));
    }
    for (const auto& row :
         Db().Rows("SELECT " + std::string(q.date) + ", LANCAMENTO, CONTA, OPERACAO, VALOR" + rows +
                   " BETWEEN '03/15/2026' AND '10/31/2026'"))
      wanted[row[0].Neutral() + row[1].AsString()].insert(row[2].AsString() + row[3].AsString() +
                                                          row[4].Neutral());
    Db().CommitRetaining();
    EXPECT_EQ(found, wanted);
  }
};

constexpr const char* kBoth = "(SELECT * FROM CONTACOR_001 UNION ALL SELECT * FROM CONTACOR_002)";
constexpr const char* kFlow = "CONTA IN (SELECT CONTA FROM CADCONTA_001 WHERE IMP_FLUXO = 'S')";
constexpr const char* kFlowOfBoth =
    "CONTA IN (SELECT CONTA FROM CADCONTA_001 WHERE IMP_FLUXO = 'S' UNION SELECT CONTA FROM CADCONTA_002 "
    "WHERE IMP_FLUXO = 'S')";

TEST_F(SecondSumTest, TheDemoCompaniesAgree) {
  Agrees({{}, "DT_CONT", "DtCont", "CONTACOR_001", "CONTA = '10250-1'"});
  Agrees({{{"RgData", "0"}, {"RgBusca", "1"}},
          "DT_LAN",
          "DtLanc",
          "CONTACOR_001",
          "CONTA = '10250-1' AND PENDENTE <> 'S'"});
  const Fields all = {{"RgTipo", "1"}, {"RelConta", ""}, {"RelCodBan", ""}};
  Agrees({all, "DT_CONT", "DtCont", "CONTACOR_001", kFlow});
  Fields companies = all;
  companies[0].second = "2";
  companies.push_back({"RgData", "2"});
  Agrees({companies, "DT_VENCTO", "DtVencto", kBoth, kFlowOfBoth});
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
  Agrees({{}, "DT_CONT", "DtCont", "CONTACOR_001", "CONTA = '10250-1'"});
  Agrees(
      {{{"RgTipo", "1"}, {"RelConta", ""}, {"RelCodBan", ""}, {"EdtClasseIni", "2"}, {"EdtClasseFim", "31"}},
       "DT_CONT",
       "DtCont",
       "CONTACOR_001",
       std::string(kFlow) + " AND GRUPO BETWEEN '2' AND '31'"});
}

}  // namespace
}  // namespace orv::test
