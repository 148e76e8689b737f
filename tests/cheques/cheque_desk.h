// What the scenarios of the cheques' screen have in common.
#pragma once

#include "tests/ledger/cc_desk.h"

namespace orv::test {

class ChequeTest : public CcTest {
 protected:
  // Only the cheques of the test are there: of 150,00, of account 77-1 of bank 903.
  ChequeTest() {
    Empty("CHEQUE_PRE_001 CHEQUE_DUP_001 CONTACOR_001 PAGTO1_001");
    Usual(Cheque{.banco = "903",
                 .agencia = "0001",
                 .conta = "77-1",
                 .valor = 150,
                 .emissor = "JOSE D'AVILA",
                 .cnpj_emi = "1",
                 .cliente = "00050",
                 .representante = "0000",
                 .barra = "<9>",
                 .obs = "OBS"});
  }

  // A cheque numbered as its key.
  void Keep(Cheque cheque) {
    cheque.numero = cheque.chave;
    Put(cheque);
  }
  // The movement behind a cheque of the kind.
  void Move(const std::string& chave, const std::string& tipo) {
    Put(Movimento{.lancamento = chave,
                  .docto = chave,
                  .banco = "903",
                  .conta = "77-1",
                  .operacao = "+",
                  .tipo = tipo,
                  .pendente = "S"});
  }
  std::string Cheques() { return Sql("SELECT CHAVE, STATUS FROM CHEQUE_PRE_001 ORDER BY CHAVE"); }
  std::string Movements() {
    return Sql(
        "SELECT DOCTO, CONTA, OPERACAO, VALOR, DT_LAN, DT_CONT, DT_VENCTO, GRUPO, HISTORICO, OBSERVACAO, "
        "TIPO, PENDENTE FROM CONTACOR_001 ORDER BY LANCAMENTO, CONTA");
  }

  static void Stand(Desk& desk, int row) { desk.Stand("DBGrid1", row); }
  // The table's state and what of the form is open: "browse", "edit confirm", "browse confirm company".
  static std::string Mode(Desk& desk) {
    const Json set = desk.SetOf("tbCheque_pre");
    return set["state"].String() + (desk.Visible("PainelConfirma") ? " confirm" : "") +
           (desk.Visible("CBEmpresa") ? " company" : "");
  }
  static void GiveUp(Desk& desk) {
    desk.Click("BitBtn2");
    desk.CloseLists();
  }
  // Confirms the quick entry that is open over a cheque.
  static void Post(Desk& desk, const char* answer = "yes") {
    desk.Fill({{"EdtConta", kConta}, {"EdtTipo", "1101"}, {"EdtHis", "005"}});
    desk.Click("BitBtn1");
    if (desk.End() == "waiting answer") desk.Answer(answer);
  }
};

}  // namespace orv::test
