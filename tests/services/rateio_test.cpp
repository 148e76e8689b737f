// The apportionment that a class asks for: whole rules ask nothing, a difference is asked and closes to the
// cent.
#include "tests/ledger/cc_desk.h"

namespace orv::test {
namespace {

TEST_F(CcTest, ADifferenceIsAskedAndMustCloseToTheCent) {
  Fin({80});
  Run("UPDATE SUBGRUPO_001 SET RATEIO = 'S' WHERE CODIGO = '2101'");
  for (const char* centre : {"0100", "0200", "0300"})
    Put(RegraRateio{.codigo = "2103", .ccusto = centre, .perc_ccusto = *(centre + 1) == '3' ? 33.34 : 33.33});
  Put(RegraRateio{.codigo = "2102", .perc_conta = 60});
  Put(RegraRateio{.codigo = "2102", .conta = "4.1.01.001", .perc_conta = 20, .ccusto = "0200"});
  Desk desk(database_, At{"TfmCC"});
  const auto stored = [&](const std::string& numero) {
    return Sql(
        "SELECT LANCAMENTO, ORDEM, CONTA, CENTROCUSTO, TIPO, PERC_RAT, VALOR_RAT FROM CENTRO_RATEIO_001 "
        "WHERE NUMERO = '" +
        numero + "' ORDER BY ORDEM, CENTROCUSTO");
  };
  // Whole rules ask nothing; again they replace what was there, but for rows whose document reads the same.
  const std::string whole = New(desk, {{"EdtTipo", "2103"}, {"EdtValor", "0,03"}});
  Put(Rateio{.lancamento = "000001", .numero = whole, .centrocusto = "0900"});
  EXPECT_EQ(Confirm(desk), "");
  Load(desk, whole);
  desk.Click("BitBtn2");
  desk.Fill({{"EdtValor", "100,01"}});
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(stored(whole),
            "|1|4.1.04.001|0100|CC|33.33|33.3300;000001|1|4.1.04.001|0900|CC|100|100.0000;"
            "|2|4.1.04.001|0200|CC|33.33|33.3300;|3|4.1.04.001|0300|CC|33.34|33.3500");

  const std::string numero = New(desk, {{"EdtTipo", "2102"}});
  const auto row = [&](int row, const char* column, const char* value) {
    desk.Cell("DbgRateio", row, column, value);
    return desk.Told("BitBtn1");
  };
  desk.Click("SpeedButton2");
  EXPECT_EQ(desk.Texts({"EdtTotal", "EdtDiferenca"}), "100,00|20,00");
  EXPECT_EQ(desk.Told("BitBtn1"), "Diferença no percentual de Rateio de Centro de Custo de 20,00%");
  desk.Append("DbgRateio");
  desk.Cell("DbgRateio", 2, "Codigo", "0099");
  EXPECT_EQ(row(2, "Perc", "20"), "Centro de Custo Inválido.");
  // The percentage follows an amount, within the hundredth.
  desk.Cell("DbgRateio", 2, "Codigo", "0300");
  EXPECT_EQ(row(2, "Valor", "20,01"), "Diferença no valor do Rateio de Centro de Custo de -0,01.");
  EXPECT_EQ(stored(numero) + Movement(numero), "");
  EXPECT_EQ(row(2, "Valor", "20"), "");
  EXPECT_EQ(stored(numero),
            "|1|4.1.04.001|0100|CC|60|60.0000;|2|4.1.01.001|0200|CC|20|20.0000;"
            "|3||0300|CC|20|20.0000");

  // A class may ask for shares without rules.
  const std::string asked = New(desk, {{"EdtTipo", "2101"}, {"EdtValor", "50,05"}});
  desk.Click("SpeedButton2");
  EXPECT_EQ(desk.Texts({"EdtTotal", "EdtDiferenca"}), "50,05|50,05");
  desk.Append("DbgRateio");
  desk.Cell("DbgRateio", 0, "Codigo", "0100");
  EXPECT_EQ(row(0, "Perc", "100"), "");
  EXPECT_EQ(stored(asked), "|1||0100|CC|100|50.0500");
}

}  // namespace
}  // namespace orv::test
