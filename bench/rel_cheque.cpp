// The report of cheques beside their titles: a hundred thousand cheques of the register, beside the bare
// fetch of the same joined rows in one statement.
#include <cstdlib>
#include <iostream>

#include "bench/statement_screen.h"
#include "frame/module.h"
#include "host/data/attachment.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 4;
constexpr int kCheques = 100'000;
const char* const kJoined =
    "SELECT C.TIPO, C.NUMERO, C.CONTA, C.AGENCIA, C.BANCO, B.NOME_BANCO, C.EMISSOR, C.VALOR, C.VENCIMENTO, "
    "C.EMISSAO, C.OBS, C.REPRESENTANTE, V.NOME, R.NUMERO, R.CODCLI, CL.NOME, R.VALOR2, R.SITUACAO, "
    "T.DESCRICAO, P.NUM_AP, P.DUPLI, P.CODCRE, F.NOME, P.VALOR, C.DT_BAIXA, C.OBS, C.CHAVE "
    "FROM CHEQUE_PRE_001 C LEFT JOIN REPRESEN_001 V ON C.REPRESENTANTE = V.CODREP "
    "LEFT JOIN CADBAN_001 B ON C.BANCO = B.BANCO LEFT JOIN CHEQUE_DUP_001 D ON C.BANCO = D.BANCO AND "
    "C.CONTA = D.CONTA AND C.NUMERO = D.NUMERO LEFT JOIN RECEBER_001 R ON R.NUMERO = D.DUPLI "
    "LEFT JOIN ENTIDADE_001 CL ON CL.CODCLI = R.CODCLI LEFT JOIN PAGTO_001 P ON P.NUM_AP = D.DUPLI "
    "LEFT JOIN ENTIDADE_001 F ON F.CODCLI = P.CODCRE LEFT JOIN TABSIT_001 T ON P.SITUACAO = T.CODIGO "
    "WHERE C.EMISSAO BETWEEN '01/01/2000' AND '12/31/2050' AND C.VENCIMENTO BETWEEN '01/01/2000' AND "
    "'12/31/2050'";

// As many cheques as it takes, each of which pays a title to receive, and every third one a title to pay too.
void AddCheques(Attachment& db) {
  const int64_t more = kCheques - db.Scalar("SELECT COUNT(*) FROM CHEQUE_PRE_001").AsInteger();
  db.Execute(
      "EXECUTE BLOCK AS DECLARE I INTEGER = 0; DECLARE N VARCHAR(8); DECLARE C VARCHAR(5); "
      "DECLARE R VARCHAR(12); DECLARE P VARCHAR(6); BEGIN "
      "SELECT MIN(NUM_AP) FROM PAGTO_001 INTO :P; SELECT MIN(NUMERO) FROM RECEBER_001 INTO :R; "
      "WHILE (I < " +
      std::to_string(more) +
      ") DO BEGIN N = 'Q' || LPAD(CAST(I AS VARCHAR(6)), 6, '0'); "
      "C = LPAD(CAST(2 + MOD(:I, 40) AS VARCHAR(5)), 5, '0'); "
      "INSERT INTO CHEQUE_PRE_001 (CHAVE, BANCO, AGENCIA, CONTA, NUMERO, VALOR, EMISSAO, VENCIMENTO, TIPO, "
      "STATUS, EMISSOR, CLIENTE, REPRESENTANTE, OBS) VALUES (:N, '901', '0001', '77-1', :N, 10 + MOD(:I, "
      "900), '" +
      std::string(kToday) + "', DATEADD(MOD(:I, 90) DAY TO DATE '" + std::string(kToday) +
      "'), 'R', 'P', 'EMITENTE DO CHEQUE ' || :C, :C, '0001', 'REFERENTE AO PEDIDO ' || :I); "
      "INSERT INTO CHEQUE_DUP_001 (BANCO, CONTA, NUMERO, DUPLI) VALUES ('901', '77-1', :N, :R); "
      "IF (MOD(I, 3) = 0) THEN INSERT INTO CHEQUE_DUP_001 (BANCO, CONTA, NUMERO, DUPLI) VALUES ('901', "
      "'77-1', :N, :P); I = I + 1; END END");
  db.CommitRetaining();
}

int Run() {
  const Module module("orvCC");
  const Copy house(House(5), "cheques.fdb");
  {
    const auto db = Attachment::Open(house.Path().string());
    AddCheques(*db);
  }
  Best bare, gathering;
  int64_t rows = 0;
  {
    StatementScreen report(house.Path(), "TfmRelChequeRec");
    report.Set("RgSituacao", "2");
    report.Set("RgTipo", "0");
    const auto gather = [&] { report.Do({{"do", "click"}, {"control", "BtnConfirma"}}); };
    const auto db = Attachment::Open(house.Path().string());
    for (int i = 0; i < kRuns; ++i) {
      Nothing nothing;
      bare.Take(Measure([&] { db->Fetch(kJoined, nothing); }));
      gathering.Take(Measure(gather));
      rows = nothing.rows;
    }
    Print("bare fetch of 100,000 cheques with their titles", bare.Cpu(), "s",
          Number(static_cast<double>(rows)) + " rows");
    Print("the report of them (2 x bare)", gathering.Cpu(), Bound::AtMost, 2 * bare.Cpu(), "s",
          Number(static_cast<double>(report.Count("TbRelatorio"))) + " rows, " + Number(gathering.Wall()) +
              " s by the clock");
  }
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
