// Amounts in words, the text of SQL, the calendar without a database, and what may be a password.
#include <gtest/gtest.h>

#include "host/services/apportion.h"
#include "host/services/calendar.h"
#include "host/services/extenso.h"
#include "host/services/passwords.h"
#include "host/services/sql_text.h"
#include "tests/support/table.h"
#include "toolkit/error.h"

namespace orv {
namespace {

TEST(AmountInWords, TellsEveryForm) {
  for (const auto& c : test::Table(ORV_FILES "extenso.txt", 2))
    EXPECT_EQ(AmountInWords(std::stoll(c[0])), c[1]) << c[0];
  EXPECT_EQ(AmountInWords(100'000, ThousandForm::Plain), "mil reais");
  EXPECT_EQ(AmountInWords(100'100'000, ThousandForm::Plain), "um milhão e mil reais");
  for (const int64_t outside : {int64_t{0}, int64_t{-100}, int64_t{100'000'000'000'000}}) {
    EXPECT_THROW(AmountInWords(outside), UserError);
  }
}

TEST(AmountText, ReadsBothDecimalSigns) {
  EXPECT_EQ(ParseAmountText("1.234,56"), Currency::FromCents(123456));
  EXPECT_EQ(ParseAmountText("1234,5"), Currency::FromCents(123450));
  EXPECT_EQ(ParseAmountText("1234.56"), Currency::FromCents(123456));
  EXPECT_EQ(ParseAmountText("1.234"), Currency::FromCents(123400));
  EXPECT_THROW(ParseAmountText("doze"), ConversionError);
  EXPECT_THROW(ParseAmountText(""), ConversionError);
}

MacroNames Names() {
  return {[](std::string_view table) { return std::string(table) + "_002"; }, "'_002'"};
}

TEST(SqlText, MacrosStandOutsideQuotesOnly) {
  EXPECT_EQ(
      ReplaceMacros("SELECT '{}' AS EMP FROM {PAGTO} P, {CO_ITEN} WHERE P.OBS = 'a{}b {X} ''{}''' AND 1 = {",
                    Names()),
      "SELECT '_002' AS EMP FROM PAGTO_002 P, CO_ITEN_002 WHERE P.OBS = 'a{}b {X} ''{}''' AND 1 = {");
  // What a user types never becomes the suffix or a table, whatever it is.
  for (const char* typed : {"{}", "{CONTACOR}", "'{}'", "x'{}'y", "'", "''", "{}'", "\\'{}"}) {
    const std::string sql = "SELECT 1 FROM {X} WHERE A = " + SqlLiteral(typed);
    EXPECT_EQ(ReplaceMacros(sql, Names()), "SELECT 1 FROM X_002 WHERE A = " + SqlLiteral(typed)) << typed;
  }
  // A quote that is never closed takes all that follows.
  EXPECT_EQ(ReplaceMacros("A = '{X}", Names()), "A = '{X}");
}

TEST(SqlText, ListFieldsBecomeLiterals) {
  for (const auto& c : test::Table(ORV_FILES "listas.txt", 2)) EXPECT_EQ(SqlCodeList(c[0]), c[1]) << c[0];
}

TEST(SqlText, CountsTheContextsOfAStatement) {
  EXPECT_EQ(CountContexts("SELECT * FROM {A} A LEFT JOIN {B} B ON (A.X = B.X) WHERE A.C = ' FROM D JOIN E '"),
            2);
  EXPECT_EQ(CountContexts("SELECT SUM(V) FROM {A} INNER JOIN EMPRESA ON 1 = 1 GROUP BY X"), 3);
  EXPECT_EQ(CountContexts("SELECT SUM(V), MAX(V) FROM {A}"), 2);
  EXPECT_EQ(CountContexts("SELECT * FROM (SELECT X FROM {A}) WHERE EXISTS (SELECT 1 FROM {B})"), 2);
}

TEST(Calendar, KnowsTheMovingAndTheFixedHolidays) {
  for (const auto& c : test::Table(ORV_FILES "feriados.txt", 2))
    EXPECT_EQ(IsBankHoliday(Date::ParseNeutral(c[0])), c[1] == "feriado") << c[0];
  EXPECT_FALSE(IsBankHoliday(Date()));
  EXPECT_EQ(Easter(1818), Date(1818, 3, 22));
  EXPECT_EQ(Easter(2038), Date(2038, 4, 25));
}

TEST(Passwords, RefusesWhatOthersWouldGuess) {
  for (const char* bad : {"curta", "onze carac.", "aaaaaaaaaaaa", "abcabcabcabc", "123456789012",
                          "987654321098", "Senha2024!!!!", "password12345", "flamengo19811981",
                          "1q2w3e4r5t6y", "AdMiNiStRaDoR1", "mariasilva e mais"}) {
    EXPECT_THROW(CheckNewPassword("mariasilva", bad), UserError) << bad;
  }
  EXPECT_THROW(CheckNewPassword("x", std::string("nove\0palavras no", 16)), UserError);
  for (const char* good : {"mesa clara 2026", "çãéíõçãéíõab", "correu a lebre"}) {
    EXPECT_NO_THROW(CheckNewPassword("mariasilva", good)) << good;
  }
}

TEST(Passwords, VerifyTakesOnlyTheRightOne) {
  const std::string hash = HashPassword("mesa clara 2026", PasswordCost::Least());
  EXPECT_LE(hash.size(), 127U);
  EXPECT_NE(hash, HashPassword("mesa clara 2026", PasswordCost::Least()));
  EXPECT_TRUE(VerifyPassword(hash, "mesa clara 2026"));
  EXPECT_FALSE(VerifyPassword(hash, "mesa clara 2025"));
  EXPECT_FALSE(VerifyPassword("", ""));
  EXPECT_FALSE(VerifyPassword(std::string(500, 'x'), "x"));
}

TEST(Shares, AddUpToTheCent) {
  std::vector<Share> shares{{"", "1", 33.33, {}}, {"", "2", 33.33, {}}, {"", "3", 33.33, {}}};
  ASSERT_TRUE(SharesAreWhole(shares));
  SetAmounts(shares, Currency::FromCents(10000));
  EXPECT_EQ(shares[0].amount, Currency::FromCents(3333));
  EXPECT_EQ(shares[2].amount, Currency::FromCents(3334));
  shares[2].percent = 33.32;
  EXPECT_FALSE(SharesAreWhole(shares));
  EXPECT_FALSE(SharesAreWhole({}));
}

}  // namespace
}  // namespace orv
