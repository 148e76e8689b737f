// The ledger's clearing, reversal, transfer and quick entry: all or nothing at every step, and one of two
// users.
#include "tests/faults/ledger_actions.h"

namespace orv::test {
namespace {

constexpr const char* kCleared = "Lançamento já compensado.";
constexpr const char* kChanged =
    "Outro usuário alterou este lançamento depois da consulta. Nada foi gravado.";

TEST_F(ActionsTest, EveryStatementCanFail) {
  // The rows that an action writes are counted, and the one that is aimed at is refused.
  Ddl("CREATE SEQUENCE G_PARADA");
  Ddl("CREATE TABLE PARADA (ALVO BIGINT)");
  Ddl("CREATE EXCEPTION E_PARADA 'stop here'");
  for (const char* table : {"CONTACOR_001", "CHEQUE_PRE_001", "CONTABIL_001", "CENTRO_RATEIO_001",
                            "AUDITORIA", "CHEQUE_PRE_002", "CHEQUE_DUP_001", "PAGTO_001", "PAGTO1_001"}) {
    Ddl("CREATE TRIGGER T_" + std::string(table) + " FOR " + table +
        " AFTER INSERT OR UPDATE OR DELETE AS BEGIN IF (GEN_ID(G_PARADA, 1) = (SELECT ALVO FROM PARADA)) "
        "THEN EXCEPTION E_PARADA; END");
  }
  Run("INSERT INTO PARADA (ALVO) VALUES (-1)");
  for (const LedgerAction& action : Actions()) {
    SCOPED_TRACE(action.name);
    Desk desk(database_);
    int rows = 0;
    for (bool whole = false; !whole && rows < 40; ++rows) {
      Run("UPDATE PARADA SET ALVO = -1");
      Restore(action);
      const std::string before = Left();
      for (const Json& in : action.before) desk.Do(in);
      Run("UPDATE PARADA SET ALVO = GEN_ID(G_PARADA, 0) + 1 + " + std::to_string(rows));
      desk.Do(action.last);
      whole = desk.Messages().empty();
      EXPECT_EQ(desk.End(), "idle");
      if (whole) {
        EXPECT_NE(Left(), before);
      } else {
        EXPECT_EQ(desk.Messages(),
                  "error: O banco de dados recusou a operação. Nada foi gravado. Avise o suporte.");
        EXPECT_EQ(Left(), before) << rows;
        // What was entered is still there.
        const std::string_view name = action.name;
        if (name == "transfer" || name == "quick entry") {
          EXPECT_EQ(desk.Text("EdtDocto"), "NOVO");
        }
        // And the same step goes through once nothing stands in its way.
        Run("UPDATE PARADA SET ALVO = -1");
        if (action.last["do"] == Json("answer")) desk.Do(action.before.back());
        desk.Do(action.last);
        EXPECT_EQ(desk.End() + desk.Messages(), "idle") << rows;
        EXPECT_NE(Left(), before) << rows;
      }
      while (!desk.State()["screens"].Items().empty()) desk.Do({{"do", "close"}});
    }
    EXPECT_GT(rows, 2);
  }
}

// Two users with the same list.
TEST_F(ActionsTest, OneOfTwoClears) {
  Desk first(database_), second(database_);
  const auto list = [&](const Fields& fields = {}) {
    for (Desk* desk : {&first, &second}) Consult(*desk, fields);
  };
  for (Desk* desk : {&first, &second}) desk->Open("TfmCC");
  list();

  // Both stand at the confirmation: nothing is held by either, and the second one's is in vain.
  for (Desk* desk : {&first, &second}) {
    desk->Click("SpeedButton8");
    EXPECT_NE(Posting(*desk), "");
  }
  Run("UPDATE CONTACOR_001 SET OBSERVACAO = 'SOLTO' WHERE LANCAMENTO = 'A1'");
  first.Answer("yes");
  EXPECT_EQ(first.Messages(), "");
  const std::string cleared = Left(), movement = Movement("A1");
  EXPECT_NE(cleared.find("A1|10250-1|N"), std::string::npos);
  second.Answer("yes");
  EXPECT_EQ(second.Messages(), kCleared);
  second.Answer("ok");
  EXPECT_EQ(second.End(), "idle");
  EXPECT_EQ(Left() + Movement("A1"), cleared + movement);
  EXPECT_EQ(Found(second), "");

  // Both reverse.
  list({{"RgBusca", "Baixados"}});
  EXPECT_EQ(Found(second), "A1 A2 A1");
  first.Click("SpeedButton6");
  EXPECT_EQ(first.Messages(), "");
  const std::string reversed = Left();
  second.Click("SpeedButton6");
  EXPECT_EQ(second.Messages(), kChanged);
  second.Answer("ok");
  EXPECT_EQ(Left(), reversed);

  // Cleared again meanwhile, under another number: the entries of that one stay.
  list({{"RgBusca", "Pendentes"}});
  first.Click("SpeedButton8");
  first.Answer("yes");
  list({{"RgBusca", "Baixados"}});
  first.Click("SpeedButton6");
  Consult(first, {{"RgBusca", "Pendentes"}});
  first.Click("SpeedButton8");
  first.Answer("yes");
  const std::string again = Left() + Movement("A1");
  second.Click("SpeedButton6");
  EXPECT_EQ(second.Messages(), kChanged);
  second.Answer("ok");
  EXPECT_EQ(Left() + Movement("A1"), again);
}

TEST_F(ActionsTest, WhatChangedSinceTheInquiryIsntCleared) {
  struct Case {
    const char *change, *message;
  };
  const Case cases[] = {
      {"UPDATE CONTACOR_001 SET VALOR = 151 WHERE DOCTO = '71'", kChanged},
      {"UPDATE CONTACOR_001 SET HISTORICO = '019' WHERE DOCTO = '71'", kChanged},
      {"UPDATE CONTACOR_001 SET TIPO_DOC = NULL WHERE DOCTO = '71'", kChanged},
      {"UPDATE CONTACOR_001 SET PENDENTE = 'C', LANC_CON = 'L9' WHERE DOCTO = '71'", kCleared},
      {"DELETE FROM CONTACOR_001 WHERE DOCTO = '71'", kChanged},
  };
  Desk desk(database_);
  for (const bool asked : {false, true}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(c.change);
      Restore();
      desk.Open("TfmCC");
      Consult(desk);
      if (asked) desk.Click("SpeedButton8");
      Run(c.change);
      const std::string before = Left();
      asked ? desk.Answer("yes") : desk.Click("SpeedButton8");
      EXPECT_EQ(desk.Messages(), c.message);
      desk.Answer("ok");
      EXPECT_EQ(desk.End(), "idle");
      EXPECT_EQ(Left(), before);
      desk.Do({{"do", "close"}});
    }
  }
}

TEST_F(ActionsTest, AnOpenChangeElsewhereIsWaitedForAndTold) {
  Desk desk(database_);
  desk.Open("TfmCC");
  Consult(desk);
  desk.Click("SpeedButton8");
  const std::string before = Left();
  Db().Execute("UPDATE CONTACOR_001 SET OBSERVACAO = 'ABERTO' WHERE CONTA = '20418-7'");
  desk.Answer("yes");
  EXPECT_EQ(desk.Messages(),
            "error: Outro usuário está alterando o mesmo registro. Aguarde um instante e tente novamente.");
  Db().Rollback();
  EXPECT_EQ(Left(), before);
  desk.Click("SpeedButton8");
  desk.Answer("yes");
  EXPECT_EQ(desk.Messages(), "");
  EXPECT_NE(Left(), before);
}

}  // namespace
}  // namespace orv::test
