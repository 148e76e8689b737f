// Postings with few strokes: what Tab goes by, what is kept from one to the next, templates and their days.
#include "tests/ledger/cc_desk.h"

namespace orv::test {
namespace {

class CcRapidoTest : public CcTest {
 protected:
  static void CtrlEnter(Desk& desk) { desk.Do({{"do", "key"}, {"key", "Ctrl+Enter"}}); }
  // Types values, each followed by Tab; where it led.
  static std::string Type(Desk& desk, std::initializer_list<const char*> values) {
    std::string way;
    for (const char* value : values) {
      desk.Set(desk.FocusName(), value);
      desk.Do({{"do", "key"}, {"control", desk.FocusName()}, {"key", "Tab"}});
      way += desk.FocusName() + " ";
    }
    return way;
  }
  std::string Template() {
    return Sql("SELECT NOME, CONTA, GRUPO, VALOR, MESES, DIA, PROXIMO FROM MODELO_LANC_001");
  }
};

TEST_F(CcRapidoTest, WhatFollowsIsGoneByAndWhatWasTypedIsKept) {
  Fin({30});
  Desk desk(database_, At{"TfmCC"});
  CtrlEnter(desk);
  EXPECT_EQ(Type(desk, {kConta, "NF 1"}), "EdtNumDoc EdtTipo ");
  // Who goes back to a date goes through all of them; no list of the empty class stands in the way.
  desk.Focus("EdtDtLanc");
  EXPECT_EQ(Type(desk, {"18/11/2026", "18/11/2026", "18/11/2026", "3103", "012", "100"}),
            "EdtDtVencto EdtDtCont EdtTipo EdtHis EdtValor RgSituacao ");
  desk.Check("CbManter", true);
  desk.Set("EdtObs", "LUZ");
  CtrlEnter(desk);
  EXPECT_EQ(Count("CONTACOR_001", "DOCTO = 'NF 1' AND DT_LAN = '11/18/2026'"), "1");

  desk.Click("BitBtn1");
  EXPECT_EQ(desk.FocusName() + "|" + desk.Texts({"EdtConta", "EdtDtLanc", "EdtDtCont", "EdtTipo"}),
            "EdtNumDoc|10250-1|18/11/2026|18/11/2026|");
  desk.Click("SpeedButton1");
  // The whole of it, with the split following the amount.
  desk.Click("BtRepete");
  EXPECT_EQ(desk.FocusName() + "|" + desk.Texts({"EdtNumDoc", "EdtTipo", "EdtHis", "CbOper", "EdtObs"}),
            "EdtValor|NF 1|3103|012|-|LUZ");
  const std::string numero = desk.Text("EdtLancto");
  desk.Set("EdtValor", "200");
  CtrlEnter(desk);
  EXPECT_EQ(Entries(numero), "1.1.02.001|4.1.03.001|130.0000;1.1.02.001|4.1.03.002|70.0000");
  // The tick is the user's, in whatever session.
  EXPECT_TRUE(Desk(database_, At{"TfmCC"}).Property("CbManter", "checked").Bool());
}

TEST_F(CcRapidoTest, TemplatesAreProposedOnTheirDayAndOnceAPeriod) {
  Desk desk(database_, At{"TfmCC"});
  New(desk, {{"EdtNumDoc", "D'AGUA"}});
  desk.Click("BtGuarda");
  Refuses(desk, "BitBtn1", "MODELO_LANC_001",
          {{{}, "Dê um nome ao modelo.", "EdtNome"},
           {{{"EdtNome", "CONTA D'AGUA"}, {"EdtMeses", "61"}},
            "Repetição inválida: informe de 1 a 60 meses, ou deixe em branco.",
            "EdtMeses"}});
  desk.Set({{"EdtMeses", "1"}, {"EdtProximo", "31/10/2026"}});
  desk.Click("BitBtn1");
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(desk.Caption("LbVence"), "1 modelo vence hoje. Próximo: CONTA D'AGUA, de 31/10/2026, 100,00.");

  // Two fill the form with it: the second one's posting is refused, and nothing of it is written.
  const auto stand = [&](const char* day) {
    Run("UPDATE MODELO_LANC_001 SET PROXIMO = '" + std::string(day) + "'");
  };
  desk.Click("BtVence");
  EXPECT_EQ(desk.Texts({"EdtNumDoc", "EdtDtLanc", "EdtDtVencto"}), "D'AGUA|20/11/2026|31/10/2026");
  stand("11/30/2026");
  const std::string before = Tables(kWritten);
  EXPECT_EQ(Confirm(desk),
            "error: Outro usuário já lançou este modelo, ou o deixou passar. Nada foi gravado.");
  EXPECT_EQ(Tables(kWritten), before);
  stand("10/31/2026");
  EXPECT_EQ(Confirm(desk), "");
  EXPECT_EQ(Template(), "CONTA D'AGUA|10250-1|3104|100.0000|1|31|2026-11-30");
  EXPECT_FALSE(desk.Visible("PanelVence"));

  // Chosen by its name; passed over, the 31st comes back behind the month that has none; deleted.
  stand("09/30/2026");
  desk.Click("BtModelos");
  desk.Choose("CONTA D'AGUA");
  EXPECT_EQ(desk.FocusName(), "EdtValor");
  desk.Click("SpeedButton1");
  desk.Click("BtPassa");
  EXPECT_EQ(Template(), "CONTA D'AGUA|10250-1|3104|100.0000|1|31|2026-10-31");
  desk.Click("BtVence");
  desk.Click("BtGuarda");
  desk.Press("BtExclui", "yes");
  EXPECT_EQ(Template(), "");
}

TEST_F(CcRapidoTest, TheListOfMovementsBeginsWithTheLatestAndFindsAmountsAndDates) {
  Empty("CONTACOR_001");
  // More than are read at once, on few days.
  Run("INSERT INTO CONTACOR_001 (LANCAMENTO, DOCTO, CONTA, OPERACAO, VALOR, DT_LAN) WITH RECURSIVE N AS "
      "(SELECT 0 AS I FROM RDB$DATABASE UNION ALL SELECT I + 1 FROM N WHERE I < 449) SELECT 100000 + I, '1', "
      "'10250-1', '-', IIF(I = 77, 1234.56, 5), IIF(MOD(I, 9) = 8, NULL, DATE '2026-11-01' + MOD(I, 9)) FROM "
      "N");
  Desk desk(database_, At{"TfmCC"});
  desk.Click("btnConsulta");
  const auto listed = [&](const char* text) {
    desk.Do({{"do", "search"}, {"text", text}});
    std::string numbers;
    const Json set = desk.SetOf("PqFluxo");
    for (const Json& row : set["rows"].Items()) numbers += row.Items()[0].String();
    return numbers;
  };
  EXPECT_EQ(listed(""),
            ReplaceAll(Sql("SELECT LANCAMENTO FROM CONTACOR_001 ORDER BY DT_LAN DESC, 1 DESC"), ";", ""));
  const std::pair<const char*, const char*> searches[] = {
      {"1.234,56", "100077"}, {"1234,56", "100077"}, {"100077", "100077"}, {"1234,57", ""}};
  for (const auto& [text, found] : searches) EXPECT_EQ(listed(text), found) << text;
  EXPECT_EQ(listed("02/11/2026").size(), 50U * 6);
}

}  // namespace
}  // namespace orv::test
