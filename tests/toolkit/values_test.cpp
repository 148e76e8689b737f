#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <fstream>
#include <thread>
#include <vector>

#include "tests/support/table.h"
#include "toolkit/currency.h"
#include "toolkit/database.h"
#include "toolkit/date.h"
#include "toolkit/error.h"
#include "toolkit/relative_period.h"
#include "toolkit/shared_texts.h"
#include "toolkit/text.h"
#include "toolkit/value.h"

namespace orv {
namespace {

TEST(CurrencyTest, ReadsWhatPeopleTypeAndRefusesTheRest) {
  for (const auto& c : test::Table(ORV_FILES "currency.txt", 2)) {
    std::string read = "no";
    try {
      read = Currency::ParseBrazil(c[0]).Neutral();
    } catch (const ConversionError&) {
      EXPECT_EQ(Currency::ParseBrazilOr(c[0], Currency(7)), Currency(7));
    }
    EXPECT_EQ(read, c[1]) << c[0];
  }
}

// The page's own tests read the same cases.
TEST(CurrencyTest, TakesWhatIsTypedOrSaysHowToWriteIt) {
  std::ifstream cases(ORV_FILES "amounts.txt");
  int count = 0;
  for (std::string line; std::getline(cases, line); ++count) {
    const auto part = Split(line, "|");
    std::string made;
    try {
      made = Currency::ParseTyped(part.at(0), std::stoi(part.at(1))).Neutral();
    } catch (const ConversionError&) {
      made = "no";
    } catch (const RangeError&) {
      made = "large";
    }
    EXPECT_EQ(made, part.at(2)) << line;
  }
  EXPECT_GT(count, 30);
}

// The page's own tests read the same cases.
TEST(RelativePeriodTest, HasItsDays) {
  std::ifstream cases(ORV_FILES "periods.txt");
  int count = 0;
  for (std::string line; std::getline(cases, line); ++count) {
    const auto part = Split(line, " ");
    const Date today = Date::ParseNeutral(part.at(0));
    const RelativePeriod* period = FindRelativePeriod(part.at(1));
    ASSERT_NE(period, nullptr) << line;
    const auto [from, to] = period->days(today);
    EXPECT_EQ(from.Neutral() + " " + to.Neutral(), part.at(2) + " " + part.at(3)) << line;
    EXPECT_EQ(RelativePeriodOf(from, to, today), period) << line;
  }
  EXPECT_GT(count, 8);
}

TEST(CurrencyTest, WritesAndRoundsHalfAwayFromZero) {
  const struct {
    int64_t raw;
    const char *brazil, *format2;
  } cases[] = {{12345650, "1.234,57", "1234.57"},
               {-12345650, "-1.234,57", "-1234.57"},
               {49, "0,00", "0.00"},
               {50, "0,01", "0.01"},
               {-49, "0,00", "0.00"},
               {1234567890000, "123.456.789,00", "123456789.00"}};
  for (const auto& c : cases) {
    EXPECT_EQ(Currency::FromRaw(c.raw).Brazil(), c.brazil);
    EXPECT_EQ(Currency::FromRaw(c.raw).Format2(), c.format2);
  }
  EXPECT_EQ(Currency::FromDouble(1.00005).Neutral(), "1.0001");
  EXPECT_EQ(Currency::FromDouble(-0.00005).Neutral(), "-0.0001");
  EXPECT_EQ((Currency(1000) * 33.33 / 100).Neutral(), "333.3000");
  EXPECT_EQ((Currency::ParseNeutral("0.0150") * 0.5).Neutral(), "0.0075");
  EXPECT_EQ(Currency::FromDouble(250000000000).Neutral(), "250000000000.0000");
  EXPECT_EQ((Currency::FromCents(99999999999999) * 1.0).Neutral(), "999999999999.9900");
  EXPECT_EQ((Currency::FromCents(99999999999999) / 0.1).Neutral(), "9999999999999.9000");
  EXPECT_EQ((Currency(-1) / 3).Neutral() + (Currency(1) / 1e30).Neutral(), "-0.33330.0000");
  const struct {
    double number;
    int decimals;
    double rounded;
  } floats[] = {{1.005, 2, 1.01}, {-2.675, 2, -2.68},
                {2.5, 0, 3},      {1e22, 2, 1e22},
                {0.15, 1, 0.2},   {1234567.8915, 3, 1234567.892},
                {-1e-300, 8, 0},  {0.000000015, 8, 0.00000002}};
  for (const auto& f : floats) EXPECT_EQ(RoundFloat(f.number, f.decimals), f.rounded) << f.number;
}

TEST(CurrencyTest, OverflowIsToldNotWrapped) {
  const Currency most = Currency::ParseBrazil("99999999999999999999999999999,9999");
  EXPECT_EQ(Value(-most).AsCurrency(), -most);
  EXPECT_THROW(most + Currency(1), RangeError);
  EXPECT_THROW(-most - Currency(1), RangeError);
  EXPECT_THROW(most * 2.0, RangeError);
  EXPECT_THROW(Currency(1) / 0.0, RangeError);
  EXPECT_THROW(Currency::FromDouble(1e30), RangeError);
  EXPECT_THROW(Currency::FromDouble(std::nan("")), RangeError);
}

TEST(DateTest, TextsInTheThreeForms) {
  const Date day = Date::ParseBrazil("5/3/2026");
  EXPECT_EQ(day.Brazil() + " " + day.Sql() + " " + day.Neutral(), "05/03/2026 03/05/2026 2026-03-05");
  EXPECT_EQ(Date().Brazil() + Date().Neutral() + Date().Sql(), "12/30/1899");
  EXPECT_TRUE(Date::ParseBrazil("  ").Empty());
  for (const char* bad : {"29/02/2025", "31/04/2026", "1/1/26", "01-02-2026", "aa/bb/cccc", "1/13/2026",
                          "0/1/2026", "1/1/20266", "1//2026"}) {
    EXPECT_THROW(Date::ParseBrazil(bad), ConversionError) << bad;
  }
  EXPECT_EQ(Date(2024, 2, 29).AddMonths(12).Brazil(), "28/02/2025");
  EXPECT_EQ(Date(2026, 1, 31).AddMonths(-2).Brazil(), "30/11/2025");
  EXPECT_EQ(Date(2026, 11, 22).WeekDay(), 0);
  EXPECT_EQ(Date(1969, 12, 31).WeekDay(), 3);
  EXPECT_EQ(Date(2026, 3, 1) - Date(2024, 2, 28), 732);
  EXPECT_LT(Date(), Date(1, 1, 1));
  // Every day there is reads back as itself.
  for (int days = Date(1890, 1, 1).Days(); days < Date(2110, 1, 1).Days(); ++days) {
    const Date d = Date::FromDays(days);
    ASSERT_EQ(Date(d.Year(), d.Month(), d.Day()).Days(), days);
  }
}

TEST(ValueTest, TextsOfEveryLengthAreKeptAndMoved) {
  for (std::size_t size = 0; size < 40; ++size) {
    const std::string text(size, 'x');
    Value a(text);
    Value b = a;
    const Value c = std::move(a);
    b = c;
    b = *&b;
    EXPECT_EQ(b.Text(), text);
    EXPECT_TRUE(a.IsNull());
    EXPECT_EQ(b.Hash(), c.Hash());
  }
}

TEST(ValueTest, ConvertsStrictlyAndComparesAcrossKinds) {
  EXPECT_EQ(Value("1.234,50").AsCurrency(), Currency::ParseNeutral("1234.50"));
  EXPECT_EQ(Value("1234.5").AsCurrency(), Currency::ParseNeutral("1234.50"));
  EXPECT_EQ(Value("1.234").AsCurrency(), Currency(1234));
  EXPECT_THROW(Value("doze").AsCurrency(), ConversionError);
  EXPECT_THROW(Value("1x").AsInteger(), ConversionError);
  EXPECT_THROW(Value(3).AsDate(), ConversionError);
  EXPECT_EQ(Value("").AsCurrency(), Currency());
  EXPECT_TRUE(Value(Date()).IsNull());
  EXPECT_EQ(Value(0.1 + 0.2), Value(Currency::ParseNeutral("0.30")));
  EXPECT_EQ(Value(0.1 + 0.2).Hash(), Value(Currency::ParseNeutral("0.30")).Hash());
  EXPECT_EQ(Value(5), Value(5.0));
  EXPECT_EQ(Value(Date(2026, 1, 2)), Value(DateTime(Date(2026, 1, 2), 0, 0, 0)));
  EXPECT_TRUE(Compare(Value(), Value("")) < 0);
  EXPECT_TRUE(Compare(Value("B"), Value("a")) < 0);
  EXPECT_EQ(Value(1e21).Neutral(), "1000000000000000000000");
  EXPECT_EQ(Value(-0.5).AsString(), "-0,5");
}

TEST(TextTest, CountsCutsAndFoldsByCharacters) {
  EXPECT_EQ(CharCount("ação 😀"), 6U);
  EXPECT_EQ(CutChars("ação", 3), "açã");
  EXPECT_EQ(Upper("conciliação ß"), "CONCILIAÇÃO ß");
  EXPECT_EQ(Fold("Órgão Çédula"), "orgao cedula");
  EXPECT_TRUE(SameText("HISTÓRICO", "histórico"));
  EXPECT_FALSE(SameText("historico", "histórico"));
  EXPECT_EQ(NameHash()("Descrição"), NameHash()("DESCRIÇÃO"));
  EXPECT_FALSE(ValidUtf8("\xC3"));
  EXPECT_FALSE(ValidUtf8(std::string_view("a\0b", 3)));
  EXPECT_EQ(CleanUtf8("a\xFF"
                      "b"),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(Quote("d'água"), "'d''água'");
  EXPECT_EQ(Split("a;;b", ";"), (std::vector<std::string>{"a", "", "b"}));
}

TEST(ValueTest, CopiesOfALongTextOutliveAndIgnoreEachOther) {
  const std::string text = "um histórico que não cabe no próprio valor";
  Value first(text);
  Value second = first;
  Value& same = second;
  second = same;
  first = "outro histórico, também mais comprido";
  EXPECT_EQ(second.Text(), text);
  Value third = second;
  second = Value();
  EXPECT_EQ(third.Text(), text);
  // Copies come and go in several threads.
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([third] {
      for (int n = 0; n < 10000; ++n) {
        const Value mine = third;
        const Value other = mine;
      }
    });
  }
  third = 1;
  for (std::thread& thread : threads) thread.join();

  SharedTexts names;
  Value a(text), b(text), none, number(3);
  for (Value* value : {&a, &b, &a, &none, &number}) names.Share(*value);
  EXPECT_EQ(a.Text().data(), b.Text().data());
  EXPECT_EQ(b.Text(), text);
  EXPECT_TRUE(none.IsNull());
  EXPECT_EQ(number.AsInteger(), 3);
}

}  // namespace
}  // namespace orv
