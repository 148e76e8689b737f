// The actions of the ledger that change more than one row, as far as the object that carries each of them
// out.
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
  // All rows that the actions write, without the numbers that are drawn.
  std::string Left() {
    return Sql("SELECT LANCAMENTO, CONTA, PENDENTE, DT_CONT, OPERACAO, CHAR_LENGTH(LANC_CON) FROM "
               "CONTACOR_001 WHERE LANCAMENTO STARTING WITH 'A' ORDER BY 1, 2") +
           "/" + Sql("SELECT CONTA, OPERACAO, VALOR FROM CONTACOR_001 WHERE DOCTO = 'NOVO' ORDER BY 1") +
           "/" + Sql("SELECT CONTA_C, CONTA_D, VALOR FROM CONTABIL_001 ORDER BY 1, 2") + "/" +
           Sql("SELECT NUMERO, STATUS FROM CHEQUE_PRE_001 ORDER BY 1") + "/" +
           Sql("SELECT COUNT(*), SUM(VALOR_RAT) FROM CENTRO_RATEIO_001") + "/" +
           Sql("SELECT COUNT(*) FROM AUDITORIA");
  }

  static const std::vector<LedgerAction>& Actions() {
    const Json page{{"do", "page"}, {"control", "PageControl1"}, {"page", "TabSheet1"}};
    const Json cc{{"do", "open"}, {"class", "TfmCC"}}, yes{{"do", "answer"}, {"value", "yes"}};
    static const std::vector<LedgerAction> actions = {
        {"clearing", {cc, page, DoClick("BitBtn5"), DoClick("SpeedButton8")}, yes},
        {"reversal", {cc, page, DoSet("RgBusca", "Baixados"), DoClick("BitBtn5")}, DoClick("SpeedButton6")},
        {"transfer",
         {cc, DoClick("BitBtn7"), DoSet("EdtConta", kConta), DoSet("EdtContaDest", kOutraConta),
          DoSet("EdtDocto", "NOVO"), DoSet("EdtValor", "10,00"), DoSet("EdtClasseSai", "4101"),
          DoSet("EdtHisSai", "006"), DoSet("EdtClasseEnt", "4102"), DoSet("EdtHisEnt", "007"),
          DoClick("BitBtn1")},
         yes},
        {"quick entry",
         {Json{{"do", "open"}, {"class", "TFmCCLancFluxo"}}, DoSet("EdtConta", kConta),
          DoSet("EdtDocto", "NOVO"), DoSet("EdtTipo", "3103"), DoSet("EdtHis", "012"),
          DoSet("EdtValor", "100,00"), DoClick("BitBtn1")},
         yes},
    };
    return actions;
  }
};

}  // namespace orv::test
