// The actions of the ledger and of the cheques that change more than one row, as far as the object that
// carries each of them out.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/ledger/cc_desk.h"

namespace orv::test {

struct LedgerAction {
  const char* name;
  // What a person does before, and the object that confirms.
  std::vector<Json> before;
  Json last;
  // Stands on the page of the cheques, with cheques of its own in every state.
  bool cheques = false;
};

inline Json DoSet(std::string_view control, std::string_view value) {
  return {{"do", "set"}, {"control", control}, {"value", value}};
}
inline Json DoClick(std::string_view control) { return {{"do", "click"}, {"control", control}}; }

class ActionsTest : public CcTest {
 protected:
  ActionsTest() {
    Fin({80});
    Restore();
  }

  // A pending cheque, a cleared one and a movement that a quick entry moves, as they were.
  void Restore() {
    Run("DELETE FROM CONTACOR_001");
    Run("DELETE FROM CHEQUE_PRE_001");
    Run("DELETE FROM CONTABIL_001");
    Run("DELETE FROM CENTRO_RATEIO_001");
    Run("DELETE FROM AUDITORIA");
    Store({.numero = "A1", .docto = "71", .pendente = "S", .historico = "004", .tipo_doc = "CH"});
    Store({.numero = "A1", .docto = "71", .conta = kOutraConta, .operacao = "+", .pendente = "S"});
    Cheque("A1", "71", "P");
    Store({.numero = "A2", .docto = "72", .lanc_con = "L2", .historico = "004", .tipo_doc = "CH"});
    Cheque("A2", "72", "B");
    Run("INSERT INTO CONTABIL_001 (LANCAMENTO, CONTA_C, CONTA_D, VALOR) VALUES ('L2', '1', '2', 150)");
  }
  void Restore(const LedgerAction& action) {
    Restore();
    Store({.numero = "A5", .docto = "75"});
    if (!action.cheques) return;
    for (const char* table : {"CHEQUE_PRE_002", "CHEQUE_DUP_001", "PAGTO_001", "PAGTO1_001"})
      Run("DELETE FROM " + std::string(table));
    // Of the first two one is pending, one cleared; then the company's own one that paid two bills, and one
    // that came back.
    Cheque("A3", "73", "P");
    Cheque("A4", "74", "D");
    Run("UPDATE CHEQUE_PRE_001 SET TIPO = 'R', CLIENTE = '00001', EMISSAO = '11/10/2026', VENCIMENTO = "
        "'11/12/2026'");
    Store({.numero = "A3", .docto = "73", .tipo = "P", .pendente = "S", .tipo_doc = "CH"});
    Run("INSERT INTO CHEQUE_DUP_001 (BANCO, CONTA, NUMERO, DUPLI) VALUES ('901', '10250-1', '74', 'X')");
    for (const char* bill : {"B1", "B2"}) {
      Run("INSERT INTO PAGTO_001 (NUM_AP, VAL_PAG) VALUES ('" + std::string(bill) + "', 75)");
      Run("INSERT INTO PAGTO1_001 (NUM_AP, LANCAMENTO, VAL_PAG) VALUES ('" + std::string(bill) +
          "', 'A3', 75)");
    }
  }
  // All rows that the actions write, without the numbers that are drawn.
  std::string Left() {
    return Sql("SELECT LANCAMENTO, CONTA, PENDENTE, DT_CONT, OPERACAO, CHAR_LENGTH(LANC_CON), OBSERVACAO "
               "FROM CONTACOR_001 WHERE LANCAMENTO STARTING WITH 'A' ORDER BY 1, 2") +
           "/" + Sql("SELECT CONTA, OPERACAO, VALOR FROM CONTACOR_001 WHERE DOCTO = 'NOVO' ORDER BY 1") +
           "/" + Sql("SELECT CONTA_C, CONTA_D, VALOR FROM CONTABIL_001 ORDER BY 1, 2") + "/" +
           Sql("SELECT NUMERO, STATUS, OBS FROM CHEQUE_PRE_001 ORDER BY 1") + "/" +
           Sql("SELECT CHAVE FROM CHEQUE_PRE_002 WHERE CHAVE STARTING WITH 'A'") + "/" +
           Sql("SELECT COUNT(*) FROM CHEQUE_DUP_001") + "/" + Sql("SELECT COUNT(*) FROM PAGTO1_001") + "/" +
           Sql("SELECT SUM(VAL_PAG) FROM PAGTO_001") + "/" +
           Sql("SELECT COUNT(*), SUM(VALOR_RAT) FROM CENTRO_RATEIO_001") + "/" +
           Sql("SELECT COUNT(*) FROM AUDITORIA");
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

  static const std::vector<LedgerAction>& Actions() {
    const Json page{{"do", "page"}, {"control", "PageControl1"}, {"page", "TabSheet1"}};
    const Json cc{{"do", "open"}, {"class", "TfmCC"}}, yes{{"do", "answer"}, {"value", "yes"}};
    const Json stored{{"do", "choose"}, {"key", "A5"}}, ready{{"do", "focus"}, {"control", "SpeedButton2"}};
    static const std::vector<LedgerAction> actions = {
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
         yes, true},
        {"cheque altered", AtCheque(1, {DoClick("BtnAltera"), DoSet("EdtObs", "OUTRA")}, false),
         DoClick("BtnConfirmar"), true},
        {"cheque cancelled", AtCheque(2, {DoClick("BitBtn3")}, false), yes, true},
        {"cheque returned", AtCheque(1, {DoClick("BitBtn4"), yes}, true), yes, true},
        {"cheque presented again", AtCheque(3, {DoClick("BitBtn7"), yes}, true), yes, true},
        {"cheque deleted", AtCheque(3, {DoClick("BtExcluir")}, false), yes, true},
        {"cheque transferred", AtCheque(0, {DoClick("BitBtn2"), DoSet("CBEmpresa", "1")}, false),
         DoClick("BtnConfirmar"), true},
    };
    return actions;
  }
};

}  // namespace orv::test
