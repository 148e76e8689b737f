// Filter texts against a small table.
#include "toolkit/filter.h"

#include <gtest/gtest.h>

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
  const struct {
    const char *filter, *rows;
  } cases[] = {
      {"", "123456"},
      {"  ", "123456"},
      {"Nr = 2", "2"},
      {"nr=2 or NR = 4", "24"},
      {"2 = Nr", "2"},
      {"Classe = '3.1'", "2"},
      {"Classe = 'd''água'", "4"},
      {"classe = 'ação'", ""},
      {"Classe like '3%'", "123"},
      {"Classe like '3.%' and classe <> '3.1'", "3"},
      {"Classe like 'A__o'", "6"},
      {"Classe LIKE '%.%1'", "23"},
      {"Classe not like '3%'", "46"},
      {"Valor = 10", "14"},
      {"Valor > -20.5 AND Valor < 0.01", "23"},
      {"Taxa = .5", "15"},
      {"Taxa = Valor", ""},
      {"Taxa < Valor", "146"},
      {"Data = '01/02/2026'", "25"},
      {"Data >= '01/01/2026' and data <= '28/02/2026'", "125"},
      {"Data in ('31/12/2025', '01/03/2026')", "46"},
      {"Data IS NULL", "3"},
      {"Classe is not null and Data is not null", "1246"},
      {"Nr in (1, 3, 5) or Classe in ('3.1')", "1235"},
      {"Nr not in (1,2)", "3456"},
      {"Nr = 1 or Nr = 2 and Valor < 0", "12"},
      {"(Nr = 1 or Nr = 2) and Valor < 0", "2"},
      {"not (Nr = 1 or Nr = 2)", "3456"},
      {"not Nr > 2 and not Nr = 1", "2"},
      // A comparison with null is neither true nor false.
      {"Classe <> '3'", "2346"},
      {"not Classe = '3'", "2346"},
      {"not (Classe = '3' and Nr > 0)", "2346"},
      {"not (Classe = '3' and Nr = 1)", "23456"},
      {"Classe not in ('3', '3.1')", "346"},
      {"Nr = 1 and Nr = 2", ""},
      {"Classe = '3' and Valor = 10 and Data = '31/01/2026'", "1"},
  };
  for (const auto& one : cases) EXPECT_EQ(Rows(one.filter), one.rows) << one.filter;
}

TEST_F(Filters, ToldWhereTheyDoNotMakeSense) {
  const struct {
    const char* filter;
    int place;
  } cases[] = {
      {"Nada = 1", 1},
      {"Nr = ", 6},
      {"Nr = 1 Valor = 2", 8},
      {"Classe = 'aberto", 10},
      {"(Nr = 1", 8},
      {"Nr = 1)", 7},
      {"Classe 'x'", 8},
      {"Data = '31/02/2026'", 8},
      {"Valor = 'muito'", 9},
      {"Nr in ()", 8},
      {"Nr in (1", 9},
      {"Nr is 1", 7},
      {"not", 4},
      {"Nr not = 1", 8},
      {"Classe like Nr", 13},
      {"Classe = 'ação' ;", 17},
      {"Valor = 1.2.3", 9},
      {"Nr = 99999999999999999999999 and x", 34},
  };
  set.SetFilter("Nr = 2");
  set.SetFiltered(true);
  for (const auto& one : cases) {
    try {
      set.SetFilter(one.filter);
      ADD_FAILURE() << one.filter;
    } catch (const UserError& error) {
      EXPECT_EQ(std::string(error.what()), "O filtro \"" + std::string(one.filter) +
                                               "\" não se entende na posição " + std::to_string(one.place) +
                                               ".");
    }
  }
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
