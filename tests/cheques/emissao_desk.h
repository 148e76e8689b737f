// What the scenarios of the issued cheques have in common.
#pragma once

#include "tests/cheques/cheque_desk.h"

namespace orv::test {

class EmissaoTest : public ChequeTest {
 protected:
  // Payables of 100,00 and 50,00, one of another company under the first one's number, and a class that is
  // apportioned without a question.
  EmissaoTest() {
    Fin({80});
    Restore();
  }
  void Restore() {
    for (const char* table :
         {"PAGTO_001", "PAGTO_002", "PAGTO1_001", "PAGTO1_002", "CONTACOR_001", "CONTABIL_001",
          "CHEQUE_PRE_001", "CHEQUE_DUP_001", "CENTRO_RATEIO_001", "CONT_RATEIO_001", "AUDITORIA"})
      Run("DELETE FROM " + std::string(table));
    Rule("2103", "4.1.04.001", "100", "0100", "100");
    Bill("_001", "000001", "00060", 100);
    Bill("_001", "000002", "00069", 50);
    Bill("_002", "000001", "00060", 30);
  }
  void Bill(const std::string& company, const std::string& number, const std::string& supplier, int amount) {
    DeskTest::Store("PAGTO" + company, {{"NUM_AP", number},
                                        {"CODCRE", supplier},
                                        {"DOCTO", "NF" + number},
                                        {"DUPLI", number + "/1"},
                                        {"DT_EMI", "11/01/2026"},
                                        {"DT_VEN", "12/01/2026"},
                                        {"NUM_OS", "2101"},
                                        {"VALOR", std::to_string(amount)},
                                        {"STATUS", "N"},
                                        {"BLOQUEIO", "N"},
                                        {"SITUACAO", "0"},
                                        {"HISTORICO", "003"}});
  }
  // All rows that the screen writes, table by table; `numero` stands as L.
  std::vector<std::string> Left(const std::string& numero = "?") {
    std::vector<std::string> all;
    for (const char* sql :
         {"SELECT LANCAMENTO, DOCTO, BANCO, CONTA, OPERACAO, VALOR, DT_LAN, DT_VENCTO, DT_CONT, GRUPO, "
          "HISTORICO, OBSERVACAO, TIPO, TIPO_DOC, PENDENTE FROM CONTACOR_001 ORDER BY 1, 5",
          "SELECT LANCAMENTO, DOCTO, DOCTO2, CONTA_C, CONTA_D, OPERACAO, ORIGEM, CLASSE, HISTORICO, VALOR, "
          "DATA, CODIGO, OBSERVACAO FROM CONTABIL_001 ORDER BY 1, 3",
          "SELECT EMP, NUM_AP, STATUS, VAL_PAG FROM (SELECT '1' AS EMP, NUM_AP, STATUS, VAL_PAG FROM "
          "PAGTO_001 UNION ALL SELECT '2', NUM_AP, STATUS, VAL_PAG FROM PAGTO_002) ORDER BY 1, 2",
          "SELECT '1', NUM_AP, LANCAMENTO, DOCTO, DT_LAN, CLASSE, HISTORICO, VAL_PAG FROM PAGTO1_001 UNION "
          "ALL SELECT '2', NUM_AP, LANCAMENTO, DOCTO, DT_LAN, CLASSE, HISTORICO, VAL_PAG FROM PAGTO1_002",
          "SELECT CHAVE, BANCO, CONTA, NUMERO, AGENCIA, VALOR, EMISSOR, CLIENTE, TIPO, FORNECEDOR, EMISSAO, "
          "VENCIMENTO, DUPLICATA, STATUS, OBS FROM CHEQUE_PRE_001 ORDER BY 4",
          "SELECT CONTA, NUMERO, DUPLI, CHAVE, JUROS, VALOR FROM CHEQUE_DUP_001 ORDER BY 2, 3",
          "SELECT NUMERO, TIPO, VALOR_RAT FROM CENTRO_RATEIO_001 ORDER BY 2"}) {
      all.push_back(ReplaceAll(Sql(sql), numero, "L"));
    }
    return all;
  }

  // A cheque of 120,00 that every rule accepts, up to its confirmation; of the payables the rows are ticked.
  static void Prepare(Desk& desk, char tipo, std::initializer_list<int> rows = {0, 1}) {
    desk.Open("TfmEmissao");
    desk.Set("RgTipo", std::string(1, tipo));
    if (tipo == '0') {
      desk.Set("CbEmpresa", "true");
      desk.Click("BitBtn5");
      for (const int row : rows) Cell(desk, "wwDBGrid1", row, "Baixar", "S");
    }
    desk.Click("PqForAnt");
    desk.Do({{"do", "choose"}, {"key", "00060"}});
    Fill(desk, {{"EdtConta", kConta}});
    desk.Focus("EdtDocto");
    Fill(desk, {{"EdtHist", "004"}, {"EdtCodClasse", "2103"}, {"EdtValor", "120,00"}});
    Fill(desk, {{"DtVencto", "30/11/2026"}, {"EdtObs", "FIO D'ALGODAO"}});
    if (tipo == '1') Fill(desk, {{"EdtHistAnt", "016"}});
    if (tipo == '3') Fill(desk, {{"EdtContaDep", kOutraConta}, {"DtDeposito", "25/11/2026"}});
  }
  // Confirms and answers what is asked, "yes" but for the last; the movement's number, "" of what isn't
  // concluded.
  static std::string Issue(Desk& desk) {
    desk.Click("BitBtn8");
    while (desk.End() == "waiting answer" && !Told(desk).starts_with("Concluído.")) desk.Answer("yes");
    const std::string told = Told(desk);
    if (desk.End() == "waiting answer") desk.Answer("ok");
    EXPECT_EQ(desk.Messages(), "");
    return told.size() < 6 ? "" : told.substr(told.size() - 6);
  }
  // What stands before the user; a refusal ends the loops of a test.
  static std::string Told(Desk& desk) {
    const std::string told = desk.Messages();
    const bool asks = told.empty() || told.ends_with("?");
    return asks || told.starts_with("Concluído.") ? told : "Concluído. Não: " + told + "      ";
  }
};

}  // namespace orv::test
