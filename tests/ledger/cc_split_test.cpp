// The ledger's screen: the accounting split of a movement and its cost centres.
#include "tests/ledger/cc_desk.h"

namespace orv::test {
namespace {

TEST_F(CcTest, ProposesByTheRulesOfTheClass) {
  Fin({30, 50});
  Desk desk(database_, At{"TfmCC"});

  // Neighbouring rules of one account make one entry with several centres.
  const std::string numero = New(desk, {{"EdtTipo", "3103"}, {"EdtHis", "012"}});
  EXPECT_EQ(desk.Rows("TbContabil"),
            "1.1.02.001|CONTA MOVIMENTO|4.1.03.001|ENERGIA ELETRICA|65|4.1.03.001\n"
            "1.1.02.001|CONTA MOVIMENTO|4.1.03.002|AGUA E TELEFONE|35|4.1.03.002\n");
  EXPECT_EQ(desk.Rows("TbCCusto"),
            "1|4.1.03.001|0200|TECELAGEM|60|39.0000\n1|4.1.03.001|0300|CONFECCAO|40|26.0000\n");
  desk.Stand("DbgContabilidade", 1);
  EXPECT_EQ(desk.Rows("TbCCusto"), "2|4.1.03.002|0100|ADMINISTRACAO|100|35.0000\n");
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Entries(numero), "1.1.02.001|4.1.03.001|65.0000;1.1.02.001|4.1.03.002|35.0000");
  EXPECT_EQ(Shares(numero),
            "1|4.1.03.001|NF 77|0200|CC|60|39.0000;1|4.1.03.001|NF 77|0300|CC|40|26.0000;"
            "2|4.1.03.002|NF 77|0100|CC|100|35.0000");
  EXPECT_EQ(Sql("SELECT DOCTO, DOCTO2, OPERACAO, ORIGEM, CLASSE, HISTORICO, DATA, OBSERVACAO FROM "
                "CONTABIL_001 WHERE LANCAMENTO = '" +
                numero + "' AND VALOR = 65"),
            "NF 77|NF 77|-|CC|3103|012|2026-11-20|PAPEL E TINTA");

  // What nobody touches stays as it is, of a debit and of a credit.
  for (const char* oper : {"-", "+"}) {
    const std::string kept = New(desk, {{"EdtTipo", "3103"}, {"CbOper", oper}});
    EXPECT_EQ(Confirm(desk), "");
    const std::string split = Entries(kept) + Shares(kept);
    Load(desk, kept);
    desk.Click("BitBtn2");
    desk.Fill({{"EdtDtVencto", "30/11/2026"}, {"EdtObs", "OUTRA"}});
    EXPECT_EQ(Confirm(desk), "");
    EXPECT_EQ(Entries(kept) + Shares(kept), split);
    EXPECT_EQ(Count("CONTABIL_001", "OBSERVACAO = 'OUTRA' AND LANCAMENTO = '" + kept + "'"), "2");
  }

  // Only neighbours are compared, and the class's own bank account takes over from that of any class.
  Put(RegraRateio{.codigo = "2101", .perc_conta = 50});
  Put(RegraRateio{.codigo = "2101", .conta = "4.1.01.001", .perc_conta = 30});
  Put(RegraRateio{.codigo = "2101", .perc_conta = 20, .ccusto = "0200"});
  Put(ClasseConta{
      .conta = "10250-1", .classe = "2101", .historico = "0", .conta_cont = "2.1.01.001", .carteira = "0"});
  New(desk, {{"EdtTipo", "2101"}});
  EXPECT_EQ(desk.Rows("TbContabil"),
            "2.1.01.001|FORNECEDORES|4.1.04.001|DESPESAS GERAIS|50|4.1.04.001\n"
            "2.1.01.001|FORNECEDORES|4.1.01.001|SALARIOS E ENCARGOS|30|4.1.01.001\n"
            "2.1.01.001|FORNECEDORES|4.1.04.001|DESPESAS GERAIS|20|4.1.04.001\n");
  desk.Click("SpeedButton1");
  EXPECT_EQ(desk.Rows("TbContabil"), "");
  EXPECT_EQ(desk.Rows("TbCCusto"), "");
}

TEST_F(CcTest, CreditWithoutRulesIsCompletedByHand) {
  Fin({30, 50});
  Desk desk(database_, At{"TfmCC"});
  const std::string numero = New(desk, {{"EdtTipo", "1101"}, {"EdtHis", "002"}});
  EXPECT_EQ(Confirm(desk), "Conta Contábil Inválida.");
  desk.Answer("ok");
  EXPECT_EQ(desk.Rows("TbContabil"), "||1.1.02.001|CONTA MOVIMENTO|100|-\n");

  // F4 chooses, Tab describes; an added row proposes what is missing.
  desk.Cell("DbgContabilidade", 0, "Valor", "60,00");
  desk.Key("DbgContabilidade", 0, "Credita", "F4");
  EXPECT_EQ(desk.End(), "waiting lookup");
  desk.Choose("3.1.01.001");
  desk.Key("DbgContabilidade", 0, "Credita", "Tab");
  desk.Append("DbgContabilidade");
  desk.Cell("DbgContabilidade", 1, "Credita", "1.1.03.001");
  desk.Cell("DbgContabilidade", 1, "Debita", "1.1.02.001");
  desk.Key("DbgContabilidade", 1, "Debita", "Tab");
  EXPECT_EQ(desk.Rows("TbContabil"),
            "3.1.01.001|VENDAS|1.1.02.001|CONTA MOVIMENTO|60|3.1.01.001\n"
            "1.1.03.001|-|1.1.02.001|CONTA MOVIMENTO|40|-\n");
  // Nothing asks a credit for cost centres, nor balance-sheet accounts.
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Entries(numero), "3.1.01.001|1.1.02.001|60.0000;1.1.03.001|1.1.02.001|40.0000");
  EXPECT_EQ(Shares(numero), "");
}

TEST_F(CcTest, CentresAddUpToTheEntry) {
  Fin({30, 50});
  for (const char* centre : {"0100", "0200", "0300"})
    Put(RegraRateio{.codigo = "2103", .ccusto = centre, .perc_ccusto = "33.33"});
  Desk desk(database_, At{"TfmCC"});
  const std::string numero = New(desk, {{"EdtTipo", "2103"}});
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Shares(numero),
            "1|4.1.04.001|NF 77|0100|CC|33.33|33.3300;1|4.1.04.001|NF 77|0200|CC|33.33|33.3300;"
            "1|4.1.04.001|NF 77|0300|CC|33.33|33.3400");

  // Thirds of ten are no whole cents: what is stored is, and adds up.
  const std::string ten = New(desk, {{"EdtTipo", "2103"}, {"EdtValor", "10,00"}});
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(
      Sql("SELECT VALOR_RAT FROM CENTRO_RATEIO_001 WHERE LANCAMENTO = '" + ten + "' ORDER BY CENTROCUSTO"),
      "3.3300;3.3300;3.3400");
}

TEST_F(CcTest, SplitRefusesInOrder) {
  Fin({30, 50, 80});
  Put(RegraRateio{.codigo = "2102"});
  Desk desk(database_, At{"TfmCC"});
  const std::string numero = New(desk, {{"EdtTipo", "2102"}});

  const auto cell = [&](const char* grid, const char* column, const char* value) {
    return [&desk, grid, column, value] { desk.Cell(grid, 0, column, value); };
  };
  const std::string shares = "Diferença no percentual de Rateio de Centro de Custo de ",
                    amounts = "Percentual Por Centro de Custo Incorreto.";
  // The apportionment by class, made before the split is checked, doesn't outlive the refusal.
  Refuses(desk, "SpeedButton2", kWritten,
          {{{}, "Centro de Custo Inválido.", "", "", cell("DbgRateioCC", "Codigo", "9999")}});
  desk.Cell("DbgRateioCC", 0, "Codigo", "0200");
  Refuses(desk, "SpeedButton2", kWritten,
          {{{}, "Conta Contábil Inválida.", "", "", cell("DbgContabilidade", "Credita", "7.7")}});
  desk.Cell("DbgContabilidade", 0, "Credita", "1.1.02.001");
  Refuses(desk, "SpeedButton2", kWritten,
          {{{}, shares + "0.02%", "", "", cell("DbgRateioCC", "Perc", "99,98")},
           {{}, shares + "-0.02%", "", "", cell("DbgRateioCC", "Perc", "100,02")}});
  desk.Cell("DbgRateioCC", 0, "Perc", "99,99");
  Refuses(desk, "SpeedButton2", kWritten,
          {{{}, amounts, "", "", cell("DbgRateioCC", "Valor", "99,94")},
           {{}, amounts, "", "", cell("DbgRateioCC", "Valor", "100,06")}});
  // The total comes last; a new movement then gets a fresh proposal.
  desk.Cell("DbgRateioCC", 0, "Valor", "99,00");
  desk.Cell("DbgContabilidade", 0, "Valor", "99,00");
  EXPECT_EQ(Confirm(desk), "Diferença nos Lançamentos -1.00.");
  desk.Answer("ok");
  EXPECT_EQ(desk.Rows("TbCCusto"), "1|4.1.04.001|0100|ADMINISTRACAO|100|100.0000\n");

  // Five cents are within the tolerance, and the row takes them.
  desk.Cell("DbgRateioCC", 0, "Valor", "99,95");
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Shares(numero), "1|4.1.04.001|NF 77|0100|CC|100|100.0000");
  EXPECT_EQ(Count("CENTRO_RATEIO_001", "NUMERO = '" + numero + "' AND LANCAMENTO = ''"), "1");
}

TEST_F(CcTest, DebitAsksForCentres) {
  Fin({30, 50});
  Desk desk(database_, At{"TfmCC"});
  New(desk, {{"EdtTipo", "2102"}});
  desk.Cell("DbgContabilidade", 0, "Debita", "4.1.04.001");
  EXPECT_EQ(Confirm(desk), "Diferença no percentual de Rateio de Centro de Custo de 100.00%");
  desk.Answer("ok");

  // Rows added by hand hang on the entry in focus; share and money follow each other by Tab.
  desk.Append("DbgRateioCC");
  desk.Key("DbgRateioCC", 0, "Codigo", "F4");
  desk.Choose("0300");
  desk.Cell("DbgRateioCC", 0, "Perc", "33,3");
  desk.Key("DbgRateioCC", 0, "Perc", "Tab");
  desk.Append("DbgRateioCC");
  desk.Cell("DbgRateioCC", 1, "Codigo", "0400");
  desk.Key("DbgRateioCC", 1, "Codigo", "Tab");
  desk.Cell("DbgRateioCC", 1, "Valor", "66,70");
  desk.Key("DbgRateioCC", 1, "Valor", "Tab");
  EXPECT_EQ(desk.Rows("TbCCusto"),
            "1|4.1.04.001|0300|CONFECCAO|33.3|33.3000\n1|4.1.04.001|0400|LOJA|66.7|66.7000\n");
  EXPECT_EQ(Confirm(desk), "");
}

TEST_F(CcTest, EntryTakesItsCentresAway) {
  Fin({30, 50});
  Desk desk(database_, At{"TfmCC"});
  const std::string numero = New(desk, {{"EdtTipo", "3103"}});
  desk.Delete("DbgContabilidade", 0);
  EXPECT_EQ(desk.Rows("TbCCusto"), "1|4.1.03.002|0100|ADMINISTRACAO|100|35.0000\n");
  desk.Cell("DbgContabilidade", 0, "Valor", "100,00");
  desk.Cell("DbgRateioCC", 0, "Valor", "100,00");
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Shares(numero), "1|4.1.03.002|NF 77|0100|CC|100|100.0000");
}

TEST_F(CcTest, StoredSplitChangesOnlyByHand) {
  Fin({30, 50});
  Put(RegraRateio{.codigo = "2102"});
  Desk desk(database_, At{"TfmCC"});
  const std::string numero = New(desk, {{"EdtTipo", "2102"}, {"EdtNumDoc", "DOCUMENTO-LONGO"}});
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Shares(numero), "1|4.1.04.001|DOCUMENTO-LO|0100|CC|100|100.0000");

  Load(desk, numero);
  EXPECT_EQ(desk.Rows("TbContabil"),
            "1.1.02.001|CONTA MOVIMENTO|4.1.04.001|DESPESAS GERAIS|100|4.1.04.001\n");
  EXPECT_EQ(desk.Rows("TbCCusto"), "1|4.1.04.001|0100|ADMINISTRACAO|100|100.0000\n");
  // In view mode the grids are for reading.
  EXPECT_TRUE(desk.Property("DbgContabilidade", "readOnly").Bool());
  desk.Cell("DbgContabilidade", 0, "Valor", "1,00");
  EXPECT_NE(desk.Messages(), "");
  desk.Key("DbgContabilidade", 0, "Credita", "F4");
  EXPECT_EQ(desk.End(), "idle");

  desk.Click("BitBtn2");
  desk.Set("EdtValor", "120,00");
  EXPECT_EQ(Confirm(desk), "Diferença nos Lançamentos -20.00.");
  desk.Answer("ok");
  EXPECT_EQ(desk.Rows("TbContabil"),
            "1.1.02.001|CONTA MOVIMENTO|4.1.04.001|DESPESAS GERAIS|100|4.1.04.001\n");
  desk.Cell("DbgContabilidade", 0, "Valor", "120,00");
  desk.Cell("DbgRateioCC", 0, "Valor", "120,00");
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Entries(numero), "1.1.02.001|4.1.04.001|120.0000");
  EXPECT_EQ(Shares(numero), "1|4.1.04.001|DOCUMENTO-LO|0100|CC|100|120.0000");
}

TEST_F(CcTest, ApportionsByClass) {
  Fin({80});
  Put(Movimento{.lancamento = "T00020", .docto = "2020", .tipo = "TR"});
  Desk desk(database_, At{"TfmCC"});
  const auto stored = [&](const std::string& numero) {
    return Sql("SELECT CENTROCUSTO, VALOR_RAT FROM CENTRO_RATEIO_001 WHERE NUMERO = '" + numero +
               "' ORDER BY 1");
  };
  // Debits only, and no transfer.
  const std::string debit = New(desk, {{"EdtTipo", "3102"}});
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(stored(debit), "0100|50.0000;0200|50.0000");
  const std::string credit = New(desk, {{"EdtTipo", "3102"}, {"CbOper", "+"}});
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(stored(credit), "");
  Load(desk, "T00020");
  desk.Click("BitBtn2");
  desk.Set("EdtTipo", "3102");
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(stored("T00020"), "");

  // Rules that leave a rest ask the user, whose refusal ends the confirmation.
  Put(RegraRateio{.codigo = "2102", .perc_ccusto = 60});
  const std::string refused = New(desk, {{"EdtTipo", "2102"}});
  desk.Click("SpeedButton2");
  desk.Close();
  EXPECT_EQ(Movement(refused), "");
  EXPECT_EQ(desk.Text("EdtLancto"), refused);
}

}  // namespace
}  // namespace orv::test
