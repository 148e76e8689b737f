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
           Sql("SELECT COUNT(*) FROM AUDITORIA") + "/" +
           Sql(SumsMissingSql(AllKeptSums().front(), "_001"));
  }

  std::string Kept(const Action& action, Desk& desk) override {
    const std::string_view name = action.name;
    return name == "transfer" || name == "quick entry" ? desk.Text("EdtDocto") : "";
  }

  // What a person does at the cheque of a row; with `entry` up to the quick entry's confirmation.
  static std::vector<Json> AtCheque(int row, std::vector<Json> steps, bool entry) {
    std::vector<Json> all = {Json{{"do", "open"}, {"class", "TfmChequePre"}},
                             Json{{"do", "row"}, {"control", "DBGrid1"}, {"row", row}}};
    all.insert(all.end(), steps.begin(), steps.end());
    if (entry) {
      for (Json& step : std::vector<Json>{DoSet("EdtConta", kConta), DoSet("EdtTipo", "1101"),
                                          DoSet("EdtHis", "005"), DoClick("BitBtn1")}) {
        all.push_back(std::move(step));
      }
    }
    return all;
  }

  static Json Ticked(int row, const char* value = "S") {
    return {{"do", "cell"}, {"control", "wwDBGrid1"}, {"row", row}, {"column", "Baixar"}, {"value", value}};
  }
  // The screen of the issued cheques up to a payment of the kind.
  static std::vector<Json> Issuing(const char* tipo, std::vector<Json> steps) {
    std::vector<Json> all = {Json{{"do", "open"}, {"class", "TfmEmissao"}}, DoSet("RgTipo", tipo)};
    if (*tipo == '0') all.insert(all.end(), {DoClick("BitBtn5"), Ticked(0), Ticked(1)});
    all.insert(all.end(),
               {DoSet("EdtConta", kConta), DoSet("EdtDocto", "NOVO"), DoSet("EdtHist", "004"),
                DoSet("EdtCodClasse", "3103"), DoSet("EdtDesNom", "ANA"), DoSet("EdtValor", "20,00")});
    all.insert(all.end(), steps.begin(), steps.end());
    return all;
  }
  // The same with the company's own cheque A3 in the queue.
  static std::vector<Json> Picked(std::vector<Json> steps) {
    const auto page = [](const char* name) {
      return Json{{"do", "page"}, {"control", "PageControl1"}, {"page", name}};
    };
    std::vector<Json> all = {
        Json{{"do", "open"}, {"class", "TfmEmissao"}},
        page("TabSheet1"),
        DoSet("EdtCCheque", "73"),
        DoClick("BitBtn3"),
        Json{{"do", "dblclick"}, {"control", "DBGrid1"}, {"row", 0}, {"column", "NUMERO"}},
        page("TabSheet2")};
    all.insert(all.end(), steps.begin(), steps.end());
    return all;
  }

  static const std::vector<Action>& All() {
    const Json page{{"do", "page"}, {"control", "PageControl1"}, {"page", "TabSheet1"}};
    const Json cc{{"do", "open"}, {"class", "TfmCC"}}, yes{{"do", "answer"}, {"value", "yes"}};
    const Json stored{{"do", "choose"}, {"key", "A5"}}, ready{{"do", "focus"}, {"control", "SpeedButton2"}};
    static const std::vector<Action> actions = {
        {"movement",
         {cc, DoClick("BitBtn1"), DoSet("EdtConta", kConta), DoSet("EdtNumDoc", "NOVO"),
          DoSet("EdtTipo", "3103"), DoSet("EdtHis", "012"), DoSet("EdtValor", "100,00"),
          DoSet("EdtObs", "NOVO"), ready},
         DoClick("SpeedButton2")},
        {"movement altered",
         {cc, DoClick("btnConsulta"), stored, DoClick("BitBtn2"), DoSet("EdtObs", "NOVO"), ready},
         DoClick("SpeedButton2")},
        {"movement deleted", {cc, DoClick("btnConsulta"), stored, DoClick("BitBtn3")}, yes},
        {"clearing", {cc, page, DoClick("BitBtn5"), DoClick("SpeedButton8")}, yes},
        {"reversal", {cc, page, DoSet("RgBusca", "Baixados"), DoClick("BitBtn5")}, DoClick("SpeedButton6")},
        {"transfer",
         {cc, DoClick("BitBtn7"), DoSet("EdtConta", kConta), DoSet("EdtContaDest", kOutraConta),
          DoSet("EdtDocto", "NOVO"), DoSet("EdtValor", "10,00"), DoSet("DtLan", "20/11/2026"),
          DoSet("DtCont", "20/11/2026"), DoSet("EdtClasseSai", "4101"), DoSet("EdtHisSai", "006"),
          DoSet("EdtClasseEnt", "4102"), DoSet("EdtHisEnt", "007"), DoClick("BitBtn1")},
         yes},
        {"quick entry",
         {Json{{"do", "open"}, {"class", "TFmCCLancFluxo"}}, DoSet("EdtConta", kConta),
          DoSet("EdtDocto", "NOVO"), DoSet("EdtTipo", "3103"), DoSet("EdtHis", "012"),
          DoSet("EdtValor", "100,00"), DoSet("DtLancto", "20/11/2026"), DoSet("DtCont", "20/11/2026"),
          DoClick("BitBtn1")},
         yes},
        {"cheque captured",
         AtCheque(0,
                  {DoClick("Btincluir"), DoSet("DBEDCodBan", "903"), DoSet("DBEDChequeNro", "NOVO"),
                   DoSet("DBEDValor", "10,00"), DoClick("BtnConfirmar")},
                  true),
         yes, kCheques},
        {"cheque altered", AtCheque(1, {DoClick("BtnAltera"), DoSet("EdtObs", "OUTRA")}, false),
         DoClick("BtnConfirmar"), kCheques},
        {"cheque cancelled", AtCheque(2, {DoClick("BitBtn3")}, false), yes, kCheques},
        {"cheque returned", AtCheque(1, {DoClick("BitBtn4"), yes}, true), yes, kCheques},
        {"cheque presented again", AtCheque(3, {DoClick("BitBtn7"), yes}, true), yes, kCheques},
        {"cheque deleted", AtCheque(3, {DoClick("BtExcluir")}, false), yes, kCheques},
        {"payables paid by cheque", Issuing("0", {DoClick("BitBtn8"), yes}), yes, kCheques, 2},
        {"cheques of a run", Issuing("0", {Ticked(0, "N"), DoClick("BitBtn4")}), yes, kCheques},
        {"advance by cheque",
         Issuing("1", {DoClick("PqForAnt"), Json{{"do", "choose"}, {"key", "00060"}},
                       DoSet("EdtHistAnt", "016"), DoClick("BitBtn8")}),
         yes, kCheques},
        {"plain cheque", Issuing("2", {DoClick("BitBtn8")}), yes, kCheques},
        {"deposit by cheque", Issuing("3", {DoSet("EdtContaDep", kOutraConta), DoClick("BitBtn8")}), yes,
         kCheques},
        {"issued cheque deleted", Picked({DoClick("BitBtn2")}), yes, kCheques},
        {"issued cheque cancelled", Picked({DoClick("BitBtn7"), yes}),
         Json{{"do", "answer"}, {"value", "ERRO"}}, kCheques, 2},
        {"cheque transferred", AtCheque(0, {DoClick("BitBtn2"), DoSet("CBEmpresa", "1")}, false),
         DoClick("BtnConfirmar"), kCheques},
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
