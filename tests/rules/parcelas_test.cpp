// Instalments, order values, payment conditions, open amounts.
#include "rules/parcelas.h"

#include <gtest/gtest.h>

#include "rules/titulo.h"
#include "toolkit/error.h"

namespace orv::test {
namespace {

std::string Parcelas(const char* total, int parcelas) {
  std::string text;
  for (int i = 1; i <= parcelas; ++i)
    text += ValorParcela(Currency::ParseNeutral(total), parcelas, i).Neutral() + " ";
  return text;
}

TEST(Parcela, LastTakesTheRest) {
  EXPECT_EQ(Parcelas("100", 2), "50.0000 50.0000 ");
  EXPECT_EQ(Parcelas("100", 3), "33.3300 33.3300 33.3400 ");
  EXPECT_EQ(Parcelas("0.05", 10), "0.0100 0.0100 0.0100 0.0100 0.0100 0.0100 0.0100 0.0100 0.0100 -0.0400 ");
  EXPECT_EQ(Parcelas("-100", 3), "-33.3300 -33.3300 -33.3400 ");
  EXPECT_EQ(Parcelas("12.3456", 1), "12.3456 ");
  // 1,00496 rounds to a cent less at once than by way of four places.
  EXPECT_EQ(Parcelas("3.0149", 3), "1.0000 1.0000 0.9949 ");
  EXPECT_EQ(NumeroParcela("000123", 10), "000123/010");
}

TEST(Parcela, ConditionReadsSlots) {
  const CondicaoPagamento two("030060");
  EXPECT_EQ(two.Parcelas(), 2);
  EXPECT_EQ(two.Dias(2), 60);
  // The count is of slots in use, while the instalments read from the front.
  const CondicaoPagamento gap("030   090");
  EXPECT_EQ(gap.Parcelas(), 2);
  EXPECT_EQ(gap.Dias(1), 30);
  EXPECT_EQ(gap.Dias(2), 0);
  EXPECT_EQ(CondicaoPagamento("   ").Parcelas() + CondicaoPagamento("").Parcelas(), 0);
  EXPECT_EQ(CondicaoPagamento(" 7 ").Dias(1), 7);
  EXPECT_THROW(CondicaoPagamento("30A").Dias(1), ConversionError);
  std::string all;
  for (int i = 1; i <= 21; ++i) all += "001";
  EXPECT_EQ(CondicaoPagamento(all).Parcelas(), 20);
}

TEST(Parcela, OrderValueRoundsItsDiscountFirst) {
  EXPECT_EQ(ValorPedido(100.0, 5).Neutral(), "95.0000");
  EXPECT_EQ(ValorPedido(10.001, 33.333).Neutral(), "6.6674");
  const Titulo t{Currency(100), Currency(5), Currency(1), Currency(20), Currency(90)};
  EXPECT_EQ(t.EmAberto().Neutral(), "-6.0000");
}

}  // namespace
}  // namespace orv::test
