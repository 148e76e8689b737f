// Filter texts against a small table.
#include "toolkit/filter.h"

#include <gtest/gtest.h>

#include "tests/support/desk_test.h"
#include "tests/support/table.h"
#include "toolkit/client_dataset.h"

namespace orv {
namespace {

class Filters : public testing::Test {
 protected:
  struct Linhas : TClientDataSet {
    using TClientDataSet::TClientDataSet;
    Field Nr{*this, "Nr", FieldType::Integer};
    Field Classe{*this, "Classe", FieldType::String, 20};
    Field Valor{*this, "Valor", FieldType::Currency};
    Field Taxa{*this, "Taxa", FieldType::Float};
    Field Data{*this, "Data", FieldType::Date};
  };

  Filters() {
    set.CreateDataSet();
    Add(1, "3", 10, 0.5, Date(2026, 1, 31));
    Add(2, "3.1", -20, 1.5, Date(2026, 2, 1));
    Add(3, "3.1.01", 0, Value(), Value());
    Add(4, "d'água", 10, 2, Date(2025, 12, 31));
    Add(5, Value(), Value(), 0.5, Date(2026, 2, 1));
    Add(6, "Ação", 30, -1, Date(2026, 3, 1));
  }
  void Add(int number, Value text, Value amount, Value rate, Value date) {
    Value row[] = {Value(number), std::move(text), amount.As(ValueKind::Currency), rate.As(ValueKind::Float),
                   std::move(date)};
    set.AppendRow(row);
  }
  // The numbers of the rows that pass.
  std::string Rows(const std::string& filter) {
    set.SetFilter(filter);
    set.SetFiltered(true);
    std::string rows;
    for (set.First(); !set.Eof(); set.Next()) rows += set.Nr.AsString();
    set.SetFiltered(false);
    return rows;
  }

  Linhas set{"Linhas"};
};

TEST_F(Filters, AcceptWhatTheySay) {
  for (const auto& c : test::Table(ORV_FILES "filters.txt", 2)) EXPECT_EQ(Rows(c[0]), c[1]) << c[0];
}

TEST_F(Filters, ToldWhereTheyDoNotMakeSense) {
  set.SetFilter("Nr = 2");
  set.SetFiltered(true);
  for (const auto& c : test::Table(ORV_FILES "no_filters.txt", 2))
    EXPECT_EQ(test::ErrorOf([&] { set.SetFilter(c[0]); }),
              "O filtro \"" + c[0] + "\" não se entende na posição " + c[1] + ".");
  // What was there goes on.
  EXPECT_EQ(set.FilterText(), "Nr = 2");
  EXPECT_EQ(set.RecordCount(), 1);
}

TEST_F(Filters, LongAndDeepOnesEndWell) {
  std::string wide = "Nr = 1";
  for (int i = 0; i < 50000; ++i) wide += " or Nr = 2";
  EXPECT_EQ(Rows(wide), "12");
  const std::string deep = std::string(100000, '(') + "Nr = 1" + std::string(100000, ')');
  EXPECT_THROW(Rows(deep), UserError);
}

TEST(Like, Backtracks) {
  EXPECT_TRUE(MatchesLike("abcabd", "%abd"));
  EXPECT_TRUE(MatchesLike("aaab", "a%a_"));
  EXPECT_FALSE(MatchesLike("aaab", "a%c_"));
  EXPECT_TRUE(MatchesLike("", "%"));
  EXPECT_FALSE(MatchesLike("", "_"));
  EXPECT_TRUE(MatchesLike("é", "_"));
}

}  // namespace
}  // namespace orv
