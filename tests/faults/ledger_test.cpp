// The actions of the ledger and of the cheques that change more than one row: all or nothing at every step,
// killed or not, and one of two users.
#include "host/schema/balances.h"
#include "tests/faults/actions.h"
#include "tests/ledger/cc_desk.h"

namespace orv::test {
namespace {

constexpr const char* kCleared = "Lançamento já compensado.";
constexpr const char* kChanged =
    "Outro usuário alterou este lançamento depois da consulta. Nada foi gravado.";

// The action stands on the page of the cheques, with cheques of its own in every state.
constexpr bool kCheques = true;

class ActionsTest : public Actions<CcTest> {
 protected:
  ActionsTest() {
    Fin({80});
    Restore();
  }

  // A pending cheque, a cleared one and a movement that a quick entry moves, as they were.
  void Restore() {
    Empty("CONTACOR_001 CHEQUE_PRE_001 CONTABIL_001 CENTRO_RATEIO_001 AUDITORIA");
    Put(Movimento{.lancamento = "A1", .docto = "71", .historico = "004", .tipo_doc = "CH", .pendente = "S"});
    Put(Movimento{.lancamento = "A1", .docto = "71", .conta = kOutraConta, .operacao = "+", .pendente = "S"});
    Put(Cheque{.chave = "A1", .numero = "71", .cliente = "00001"});
    Put(Movimento{.lancamento = "A2", .docto = "72", .historico = "004", .tipo_doc = "CH", .lanc_con = "L2"});
    Put(Cheque{.chave = "A2", .numero = "72", .status = "B", .cliente = "00001"});
    Put(Partida{.lancamento = "L2", .valor = 150});
  }
  void Restore(const Action& action) override {
    Restore();
    Put(Movimento{.lancamento = "A5", .docto = "75"});
    if (!action.special) return;
    Empty("CHEQUE_PRE_002 CHEQUE_DUP_001 PAGTO_001 PAGTO1_001");
    // To be paid by a cheque.
    for (const char* bill : {"B3", "B4"})
      Put(Pagto{.num_ap = bill, .dt_emi = "11/10/2026", .dt_ven = "11/10/2026", .valor = 10, .status = "N"});
    // Of the first two one is pending, one cleared; then the company's own one that paid two bills, and one
    // that came back.
    Put(Cheque{.chave = "A3", .numero = "73", .tipo = "P", .cliente = "00001"});
    Put(Cheque{.chave = "A4", .numero = "74", .status = "D", .cliente = "00001"});
    Put(Movimento{.lancamento = "A3", .docto = "73", .tipo = "P", .tipo_doc = "CH", .pendente = "S"});
    Put(ChequeDup{.numero = "74"});
    for (const char* bill : {"B1", "B2"}) {
      Put(Pagto{.num_ap = bill, .val_pag = "75"});
      Put(Pagto1{.num_ap = bill, .lancamento = "A3", .val_pag = 75});
    }
  }
  // All rows that the actions write, without the numbers that are drawn.
  std::string Left() override {
    return Sql("SELECT LANCAMENTO, CONTA, PENDENTE, DT_CONT, OPERACAO, CHAR_LENGTH(LANC_CON), OBSERVACAO "
               "FROM CONTACOR_001 WHERE LANCAMENTO STARTING WITH 'A' ORDER BY 1, 2") +
           "/" + Sql("SELECT CONTA, OPERACAO, VALOR FROM CONTACOR_001 WHERE DOCTO = 'NOVO' ORDER BY 1") +
           "/" + Sql("SELECT CONTA_C, CONTA_D, VALOR FROM CONTABIL_001 ORDER BY 1, 2") + "/" +
           Sql("SELECT NUMERO, STATUS, OBS FROM CHEQUE_PRE_001 ORDER BY 1") + "/" +
           Sql("SELECT CHAVE FROM CHEQUE_PRE_002 WHERE CHAVE STARTING WITH 'A'") + "/" +
           Sql("SELECT COUNT(*) FROM CHEQUE_DUP_001") + "/" + Sql("SELECT COUNT(*) FROM PAGTO1_001") + "/" +
           Sql("SELECT COUNT(*), SUM(VAL_PAG) FROM PAGTO_001") + "/" +
           Sql("SELECT COUNT(*), SUM(VALOR_RAT) FROM CENTRO_RATEIO_001") + "/" +
           Sql("SELECT COUNT(*) FROM AUDITORIA") + "/" + Sql(SumsMissingSql(AllKeptSums().front(), "_001"));
  }

  std::string Kept(const Action& action, Desk& desk) override {
    const std::string_view name = action.name;
    return name == "transfer" || name == "quick entry" ? desk.Text("EdtDocto") : "";
  }

  static const std::vector<Action>& All() {
    const std::string entry = "; EdtConta=10250-1; EdtTipo=1101; EdtHis=005; click BitBtn1; yes",
                      cheque = "open TfmChequePre; row DBGrid1 ", cc = "open TfmCC; ",
                      list = cc + "page TabSheet1; ";
    // Up to a payment of a kind, and with the company's own cheque A3 in the queue.
    const auto issuing = [](const std::string& tipo, const std::string& steps) {
      return "open TfmEmissao; RgTipo=" + tipo +
             (tipo == "0" ? "; click BitBtn5; cell wwDBGrid1 0 Baixar S; cell wwDBGrid1 1 Baixar S" : "") +
             "; EdtConta=10250-1; EdtDocto=NOVO; EdtHist=004; EdtCodClasse=3103; EdtDesNom=ANA; "
             "EdtValor=20,00; " +
             steps;
    };
    const std::string picked =
        "open TfmEmissao; page TabSheet1; EdtCCheque=73; click BitBtn3; dblclick DBGrid1 0 NUMERO; page "
        "TabSheet2; ";
    static const std::vector<Action> actions = {
        {"movement", cc + "click BitBtn1; EdtConta=10250-1; EdtNumDoc=NOVO; EdtTipo=3103; EdtHis=012; "
                          "EdtValor=100,00; EdtObs=NOVO; focus SpeedButton2; click SpeedButton2"},
        {"movement altered", cc + "click btnConsulta; choose A5; click BitBtn2; EdtObs=NOVO; focus "
                                  "SpeedButton2; click SpeedButton2"},
        {"movement deleted", cc + "click btnConsulta; choose A5; click BitBtn3; yes"},
        {"clearing", list + "click BitBtn5; click SpeedButton8; yes"},
        {"reversal", list + "RgBusca=Baixados; click BitBtn5; click SpeedButton6"},
        {"transfer", cc + "click BitBtn7; EdtConta=10250-1; EdtContaDest=20418-7; EdtDocto=NOVO; "
                          "EdtValor=10,00; DtLan=20/11/2026; DtCont=20/11/2026; EdtClasseSai=4101; "
                          "EdtHisSai=006; EdtClasseEnt=4102; EdtHisEnt=007; click BitBtn1; yes"},
        {"quick entry",
         "open TFmCCLancFluxo; EdtConta=10250-1; EdtDocto=NOVO; EdtTipo=3103; EdtHis=012; "
         "EdtValor=100,00; DtLancto=20/11/2026; DtCont=20/11/2026; click BitBtn1; yes"},
        {"cheque captured",
         cheque +
             "0; click Btincluir; DBEDCodBan=903; DBEDChequeNro=NOVO; DBEDValor=10,00; click "
             "BtnConfirmar" +
             entry,
         kCheques},
        {"cheque altered", cheque + "1; click BtnAltera; EdtObs=OUTRA; click BtnConfirmar", kCheques},
        {"cheque cancelled", cheque + "2; click BitBtn3; yes", kCheques},
        {"cheque returned", cheque + "1; click BitBtn4; yes" + entry, kCheques},
        {"cheque presented again", cheque + "3; click BitBtn7; yes" + entry, kCheques},
        {"cheque deleted", cheque + "3; click BtExcluir; yes", kCheques},
        {"payables paid by cheque", issuing("0", "click BitBtn8; yes; yes"), kCheques, 2},
        {"cheques of a run", issuing("0", "cell wwDBGrid1 0 Baixar N; click BitBtn4; yes"), kCheques},
        {"advance by cheque",
         issuing("1", "click PqForAnt; choose 00060; EdtHistAnt=016; click BitBtn8; yes"), kCheques},
        {"plain cheque", issuing("2", "click BitBtn8; yes"), kCheques},
        {"deposit by cheque", issuing("3", "EdtContaDep=20418-7; click BitBtn8; yes"), kCheques},
        {"issued cheque deleted", picked + "click BitBtn2; yes", kCheques},
        {"issued cheque cancelled", picked + "click BitBtn7; yes; ERRO", kCheques, 2},
        {"cheque transferred", cheque + "0; click BitBtn2; CBEmpresa=1; click BtnConfirmar", kCheques},
    };
    return actions;
  }
};

TEST_F(ActionsTest, EveryStatementCanFail) {
  EveryRowCanFail(All(),
                  "CONTACOR_001 CHEQUE_PRE_001 CONTABIL_001 CENTRO_RATEIO_001 AUDITORIA CHEQUE_PRE_002 "
                  "CHEQUE_DUP_001 PAGTO_001 PAGTO1_001");
}

TEST_F(ActionsTest, KilledActionsLeaveAllOrNothing) { KilledAnywhere(All(), 10); }

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
  EXPECT_EQ(second.Told(), kCleared);
  EXPECT_EQ(second.End(), "idle");
  EXPECT_EQ(Left() + Movement("A1"), cleared + movement);
  EXPECT_EQ(Found(second), "");

  // Both reverse.
  list({{"RgBusca", "Baixados"}});
  EXPECT_EQ(Found(second), "A1 A2 A1");
  EXPECT_EQ(first.Press("SpeedButton6"), "");
  const std::string reversed = Left();
  EXPECT_EQ(second.Told("SpeedButton6"), kChanged);
  EXPECT_EQ(Left(), reversed);

  // Cleared again meanwhile, under another number: the entries of that one stay.
  list({{"RgBusca", "Pendentes"}});
  first.Press("SpeedButton8", "yes");
  list({{"RgBusca", "Baixados"}});
  first.Click("SpeedButton6");
  Consult(first, {{"RgBusca", "Pendentes"}});
  first.Press("SpeedButton8", "yes");
  const std::string again = Left() + Movement("A1");
  EXPECT_EQ(second.Told("SpeedButton6"), kChanged);
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
      EXPECT_EQ(desk.Told(), c.message);
      EXPECT_EQ(desk.End(), "idle");
      EXPECT_EQ(Left(), before);
      desk.Close();
    }
  }
}

TEST_F(ActionsTest, AnOpenChangeElsewhereIsWaitedForAndTold) {
  Desk desk(database_, At{"TfmCC"});
  Consult(desk);
  AnOpenChangeIsTold(desk, "UPDATE CONTACOR_001 SET OBSERVACAO = 'ABERTO' WHERE CONTA = '20418-7'",
                     [&] { desk.Press("SpeedButton8", "yes"); });
}

}  // namespace
}  // namespace orv::test
