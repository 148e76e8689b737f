// What the scenarios of the cheques' screen have in common.
#pragma once

#include "tests/ledger/cc_desk.h"

namespace orv::test {

class ChequeTest : public CcTest {
 protected:
  // Only the cheques of the test are there.
  ChequeTest() {
    for (const char* table : {"CHEQUE_PRE_001", "CHEQUE_DUP_001", "CONTACOR_001", "PAGTO1_001"})
      Run("DELETE FROM " + std::string(table));
  }

  struct Paper {
    std::string chave;
    std::string status = "P";
    std::string tipo = "R";
    std::string cliente = "00050";
    std::string baixa = "";
  };
  // A cheque of 150,00 numbered as its key, of account 77-1 of bank 903, dated 10/11/2026 for 12/11/2026.
  void Keep(const Paper& p) {
    Run("INSERT INTO CHEQUE_PRE_001 (CHAVE, BANCO, AGENCIA, CONTA, NUMERO, VALOR, EMISSAO, VENCIMENTO, "
        "DT_BAIXA, TIPO, STATUS, CLIENTE, REPRESENTANTE, EMISSOR, CNPJ_EMI, BARRA, OBS) VALUES ('" +
        p.chave + "', '903', '0001', '77-1', '" + p.chave + "', 150, '11/10/2026', '11/12/2026', " +
        (p.baixa.empty() ? "NULL" : "'" + p.baixa + "'") + ", '" + p.tipo + "', '" + p.status + "', '" +
        p.cliente + "', '0000', 'JOSE D''AVILA', '1', '<9>', 'OBS')");
  }
  // The movement behind a cheque of the kind.
  void Move(const std::string& chave, const std::string& tipo) {
    Run("INSERT INTO CONTACOR_001 (LANCAMENTO, DOCTO, BANCO, CONTA, DT_LAN, DT_CONT, DT_VENCTO, VALOR, "
        "OPERACAO, TIPO, PENDENTE) VALUES ('" +
        chave + "', '" + chave + "', '903', '77-1', '11/10/2026', '11/10/2026', '11/12/2026', 150, '+', '" +
        tipo + "', 'S')");
  }
  std::string Cheques() { return Sql("SELECT CHAVE, STATUS FROM CHEQUE_PRE_001 ORDER BY CHAVE"); }
  std::string Movements() {
    return Sql(
        "SELECT DOCTO, CONTA, OPERACAO, VALOR, DT_LAN, DT_CONT, DT_VENCTO, GRUPO, HISTORICO, "
        "OBSERVACAO, TIPO, PENDENTE FROM CONTACOR_001 ORDER BY LANCAMENTO, CONTA");
  }

  static std::string Top(Desk& desk) { return desk.State()["screens"].Items().back()["class"].String(); }
  static void Stand(Desk& desk, int row) { desk.Do({{"do", "row"}, {"control", "DBGrid1"}, {"row", row}}); }
  static bool Visible(Desk& desk, const char* control) { return desk.Property(control, "visible").Bool(); }
  // The table's state and what of the form is open: "browse", "edit confirm", "browse confirm company".
  static std::string Mode(Desk& desk) {
    const Json set = desk.State("tbCheque_pre")["screens"].Items().back()["sets"]["tbCheque_pre"];
    return set["state"].String() + (Visible(desk, "PainelConfirma") ? " confirm" : "") +
           (Visible(desk, "CBEmpresa") ? " company" : "");
  }
  static void GiveUp(Desk& desk) {
    desk.Click("BitBtn2");
    CloseLists(desk);
  }
  // Confirms the quick entry that is open over a cheque.
  static void Post(Desk& desk, const char* answer = "yes") {
    Fill(desk, {{"EdtConta", kConta}, {"EdtTipo", "1101"}, {"EdtHis", "005"}});
    desk.Click("BitBtn1");
    if (desk.End() == "waiting answer") desk.Answer(answer);
  }
};

}  // namespace orv::test
