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
    Empty(
        "PAGTO_001 PAGTO_002 PAGTO1_001 PAGTO1_002 CONTACOR_001 CONTABIL_001 CHEQUE_PRE_001 "
        "CHEQUE_DUP_001 CENTRO_RATEIO_001 CONT_RATEIO_001 AUDITORIA");
    Put(RegraRateio{.codigo = "2103"});
    Bill("_001", "000001", "00060", 100);
    Bill("_001", "000002", "00069", 50);
    Bill("_002", "000001", "00060", 30);
  }
  void Bill(const char* company, const std::string& number, const char* supplier, int amount) {
    Put(Pagto{.num_ap = number,
              .codcre = supplier,
              .docto = "NF" + number,
              .dupli = number + "/1",
              .dt_emi = "11/01/2026",
              .dt_ven = "12/01/2026",
              .num_os = "2101",
              .valor = amount,
              .status = "N",
              .historico = "003"},
        company);
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
      for (const int row : rows) desk.Cell("wwDBGrid1", row, "Baixar", "S");
    }
    desk.Click("PqForAnt");
    desk.Choose("00060");
    desk.Fill({{"EdtConta", kConta}});
    desk.Focus("EdtDocto");
    desk.Fill({{"EdtHist", "004"},
               {"EdtCodClasse", "2103"},
               {"EdtValor", "120,00"},
               {"DtVencto", "30/11/2026"},
               {"EdtObs", "FIO D'ALGODAO"}});
    if (tipo == '1') desk.Fill({{"EdtHistAnt", "016"}});
    if (tipo == '3') desk.Fill({{"EdtContaDep", kOutraConta}, {"DtDeposito", "25/11/2026"}});
  }
  // Confirms and says yes to what is asked; the movement's number, at the end of what is told then.
  static std::string Issue(Desk& desk) {
    desk.Click("BitBtn8");
    for (int asked = 0; asked < 2 && (desk.Messages().empty() || desk.Messages().ends_with("?")); ++asked)
      desk.Answer("yes");
    const std::string told = desk.Told();
    EXPECT_TRUE(told.starts_with("Concluído. Lançamento ")) << told;
    return told.size() < 6 ? "?" : told.substr(told.size() - 6);
  }
};

}  // namespace orv::test
