// The ledger's screen, page "Acesso": movements are cleared, and clearings reversed.
#include "tests/ledger/cc_desk.h"

namespace orv::test {
namespace {

class ClearingTest : public CcTest {
 protected:
  ClearingTest() { Run("DELETE FROM CONTACOR_001"); }
  std::string Process() { return Audit("CONTA CORRENTE"); }
  std::string Clearing(const std::string& numero) {
    return Sql("SELECT DISTINCT LANC_CON FROM CONTACOR_001 WHERE LANCAMENTO = '" + numero + "'");
  }
};

TEST_F(ClearingTest, AccountingGoesByKindAndSide) {
  // Of several rows of an account and history, that of any class counts.
  Put(ClasseConta{.conta = "10250-1",
                  .classe = "3104",
                  .historico = "004",
                  .conta_cont = "9.9.99.999",
                  .codcli = "",
                  .carteira = "0"});
  struct Case {
    const char *numero, *tipo_doc, *operacao, *historico;
    const char* posting;  // credit|debit, "" for a clearing without accounting
  };
  const Case cases[] = {
      {"A1", "CH", "+", "005", "1.1.04.001|1.1.02.001"},
      {"A2", "CH", "-", "004", "1.1.02.001|2.1.02.001"},
      {"A3", "DP", "-", "004", "2.1.02.001|1.1.02.001"},
      {"A4", "", "+", "005", "1.1.04.001|1.1.02.001"},
      {"A5", "DP", "-", "019", ""},
      {"A6", "CH", "+", "", "1.1.02.001|1.1.02.001"},
      {"A7", "DP", "+", "", ""},
  };
  for (const Case& c : cases) {
    Put(Movimento{.lancamento = c.numero,
                  .docto = c.numero,
                  .operacao = c.operacao,
                  .historico = c.historico,
                  .tipo_doc = c.tipo_doc,
                  .pendente = "S"});
  }
  Desk desk(database_, At{"TfmCC"});
  EXPECT_EQ(Consult(desk), "A1 A2 A3 A4 A5 A6 A7");
  EXPECT_EQ(desk.Text("DtBaixaComp"), "20/11/2026");
  desk.Set("DtBaixaComp", "18/11/2026");
  std::string audit;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.numero);
    // A run of clearings goes down the list by itself.
    EXPECT_EQ(Selected(desk), c.numero);
    desk.Click("SpeedButton8");
    const std::string text = "COMPENSAÇÃO DOCTO NR: " + std::string(c.numero) + ".";
    if (*c.posting != 0) {
      EXPECT_EQ(Posting(desk), c.posting + ("|150,00|" + text));
      desk.Answer("yes");
    }
    EXPECT_EQ(desk.End() + desk.Messages(), "idle");
    const std::string lanc_con = Clearing(c.numero);
    EXPECT_EQ(lanc_con.size(), 6U);
    EXPECT_EQ(Entries(lanc_con), *c.posting != 0 ? c.posting + std::string("|150.0000") : "");
    EXPECT_EQ(Movement(c.numero), c.numero + std::string("|901|10250-1|2026-11-10|2026-11-12|2026-11-18|") +
                                      "150.0000|" + c.operacao + "|3104|" + c.historico + "|COMO ESTAVA|L|" +
                                      c.tipo_doc + "|N|" + lanc_con);
    audit +=
        std::string(audit.empty() ? "" : ";") + "COMPENSAÇÃO DO LANCAMENTO " + c.numero + "|3|" + c.numero;
    EXPECT_EQ(Process(), audit);
  }
  EXPECT_EQ(Found(desk), "");
  EXPECT_EQ(Sql("SELECT DOCTO, DOCTO2, OPERACAO, ORIGEM, CLASSE, HISTORICO, DATA, CODIGO, OBSERVACAO FROM "
                "CONTABIL_001 WHERE LANCAMENTO = '" +
                Clearing("A2") + "'"),
            "A2|A2|-|CC||004|2026-11-18|000|COMPENSAÇÃO DOCTO NR: A2.");
}

TEST_F(ClearingTest, TheSelectionWalksOn) {
  for (const char* numero : {"A1", "A2", "A3"})
    Put(Movimento{.lancamento = numero, .docto = numero, .pendente = "S"});
  // Both rows of a transfer are cleared together, the settled one too.
  Put(Movimento{.lancamento = "T1", .docto = "A2", .conta = kOutraConta, .tipo = "TR", .pendente = "S"});
  Put(Movimento{
      .lancamento = "T1", .docto = "A2", .operacao = "+", .tipo = "TR", .pendente = "N", .lanc_con = "L9"});
  Put(Partida{.lancamento = "L9"});
  Desk desk(database_, At{"TfmCC"});
  EXPECT_EQ(Consult(desk), "A1 A2 A3 T1");
  desk.Stand("DBGridApagar", 1);
  desk.Click("SpeedButton8");
  EXPECT_EQ(Found(desk) + " at " + Selected(desk), "A1 A3 T1 at A3");
  desk.Stand("DBGridApagar", 2);
  // Each of them holds the locks, by the day that it leaves as well.
  Run("UPDATE CONTACOR_001 SET DT_LAN = '11/22/2026' WHERE LANCAMENTO = 'T1'");
  desk.Set("DtBaixaComp", "25/11/2026");
  Closed(desk, "SpeedButton8", "CT", kConta);
  Closed(desk, "SpeedButton8", "CX");
  desk.Set("DtBaixaComp", "20/11/2026");
  desk.Click("SpeedButton8");
  EXPECT_EQ(Found(desk) + " at " + Selected(desk), "A1 A3 at A1");
  EXPECT_EQ(Sql("SELECT COUNT(*), COUNT(DISTINCT LANC_CON), MIN(PENDENTE), MIN(DT_CONT) FROM CONTACOR_001 "
                "WHERE LANCAMENTO = 'T1'"),
            "2|1|N|2026-11-20");
  EXPECT_EQ(Count("CONTABIL_001", "LANCAMENTO = 'L9'"), "0");
  // Among all movements the cleared one stays, and the selection goes on as well.
  EXPECT_EQ(Consult(desk, {{"RgBusca", "Todos"}}), "A1 A2 T1 A3 T1");
  desk.Click("SpeedButton8");
  EXPECT_EQ(Selected(desk), "A2");
  Consult(desk, {{"EdtConsLanc", "T1"}, {"EdtConsConta", kOutraConta}});
  Closed(desk, "SpeedButton6", "CT", kConta);
  EXPECT_EQ(desk.End() + Count("CONTACOR_001", "LANCAMENTO = 'T1' AND PENDENTE = 'N'"), "idle2");
}

TEST_F(ClearingTest, ChequesFollow) {
  Put(Movimento{.lancamento = "A1", .docto = "77", .historico = "004", .tipo_doc = "CH", .pendente = "S"});
  Put(Cheque{.chave = "A1", .numero = "77"});
  Put(Cheque{.chave = "A1", .numero = "78"});
  // Of a captured cheque the movement is of no kind; one that came back stays so.
  for (const char* docto : {"79", "80"})
    Put(Movimento{.lancamento = "A2", .docto = docto, .tipo_doc = "", .pendente = "S"});
  Put(Cheque{.chave = "A2", .numero = "79"});
  Put(Cheque{.chave = "A2", .numero = "80", .status = "D"});
  const auto cheques = [&] {
    return Sql(
        "SELECT NUMERO, STATUS, DT_BAIXA FROM CHEQUE_PRE_001 WHERE CHAVE < 'A3' AND CHAVE > 'A' ORDER BY 1");
  };
  const std::string before = Movement("A1");
  Desk desk(database_, At{"TfmCC"});
  Consult(desk);
  // A refused entry leaves all as it was.
  desk.Press("SpeedButton8", "no");
  EXPECT_EQ(desk.End() + desk.Messages(), "idle");
  EXPECT_EQ(Movement("A1") + cheques() + Process(), before + "77|P|-;78|P|-;79|P|-;80|D|-");
  EXPECT_EQ(Found(desk), "A1 A2 A2");

  desk.Press("SpeedButton8", "yes");
  for (int i = 0; i < 2; ++i) desk.Click("SpeedButton8");
  EXPECT_EQ(cheques() + desk.Messages(), "77|B|2026-11-20;78|P|-;79|B|2026-11-20;80|D|-");
  const std::string lanc_con = Clearing("A1");
  EXPECT_NE(Entries(lanc_con), "");
  Put(Rateio{.lancamento = lanc_con, .centrocusto = "0100"});

  EXPECT_EQ(Consult(desk, {{"RgBusca", "Baixados"}}), "A1 A2 A2");
  for (int i = 0; i < 3; ++i) desk.Click("SpeedButton6");
  EXPECT_EQ(desk.End() + desk.Messages(), "idle");
  // The dates stay where the clearing put them.
  EXPECT_EQ(cheques(), "77|P|2026-11-20;78|P|-;79|P|2026-11-20;80|D|-");
  EXPECT_EQ(Entries(lanc_con) + Shares(lanc_con), "");
  EXPECT_EQ(Movement("A1"), ReplaceAll(before, "|2026-11-10|150", "|2026-11-20|150"));
  EXPECT_EQ(Found(desk), "");
  EXPECT_TRUE(Process().ends_with("ESTORNO DE COMPENSAÇÃO LANC. A2|3|A2")) << Process();
}

TEST_F(ClearingTest, ReversesWhatWasNeverCleared) {
  Put(Movimento{.lancamento = "A1", .docto = "1", .pendente = "S"});
  // Tied to a statement under what is a movement's number as well.
  Put(Movimento{.lancamento = "A2", .docto = "2", .pendente = "N", .lanc_con = "A1"});
  for (const char* number : {"", "A1"}) Put(Partida{.lancamento = number});
  const std::string pending = Movement("A1"), settled = Movement("A2");
  Desk desk(database_, At{"TfmCC"});
  Consult(desk, {{"RgBusca", "Todos"}});
  desk.Click("SpeedButton6");
  EXPECT_EQ(Movement("A1"), pending);
  desk.Stand("DBGridApagar", 1);
  desk.Click("SpeedButton6");
  EXPECT_EQ(Movement("A2"), ReplaceAll(settled, "|N|A1", "|S|"));
  EXPECT_EQ(Process(), "ESTORNO DE COMPENSAÇÃO LANC. A1|3|A1;ESTORNO DE COMPENSAÇÃO LANC. A2|3|A2");
  EXPECT_EQ(Count("CONTABIL_001", "LANCAMENTO IN ('', 'A1')"), "2");
}

TEST_F(ClearingTest, RefusesInOrder) {
  Put(Movimento{.lancamento = "A1", .lanc_con = "000321"});
  Put(Extrato{.conciliado = "S", .lanc_con = "000321"});
  const std::string lock = Insert(Bloqueio{.tipo = "CT", .conta = kConta});
  Run(lock);
  Put(Bloqueio{.tipo = "CX"});
  Desk desk(database_, At{"TfmCC"});
  desk.Page("TabSheet1");
  const std::string date = "Data de Compensação inválida.", none = "Nenhum lançamento selecionado.",
                    closed = "Período fechado até 20/11/2026 para a conta 10250-1.";
  Refuses(desk, "SpeedButton8", kWritten,
          {{{{"DtBaixaComp", "31/02/2026"}}, date, "DtBaixaComp"},
           {{{"DtBaixaComp", ""}}, date, "DtBaixaComp"},
           {{{"DtBaixaComp", "20/11/2026"}}, none},
           {{},
            closed,
            "",
            "",
            [&] {
              Consult(desk, {{"RgBusca", "Todos"}});
            }},
           {{}, "Lançamento já compensado.", "", "DELETE FROM BLOQUEIO WHERE TIPO = 'CT'"},
           {{}, "Lançamento já compensado.", "", "UPDATE CONTACOR_001 SET PENDENTE = 'C'", [&] {
              Consult(desk);
            }}});
  Run("UPDATE CONTACOR_001 SET PENDENTE = 'N'");
  Refuses(desk, "SpeedButton6", kWritten,
          {{{},
            none,
            "",
            lock,
            [&] {
              Consult(desk, {{"EdtConsLanc", "A9"}});
            }},
           {{},
            "Lançamento conciliado com o extrato. Impossível continuar.",
            "",
            "",
            [&] {
              Consult(desk, {{"EdtConsLanc", "A1"}});
            }},
           // Of a movement in a closed account both periods are told.
           {{},
            "Período do caixa fechado até 20/11/2026.",
            "",
            "UPDATE EXTRATO_001 SET CONCILIADO = 'N' WHERE LANCTO = 'E1'"},
           {{}, closed, "", "DELETE FROM BLOQUEIO WHERE TIPO = 'CX'"}});
  Unlock("CT");
  EXPECT_EQ(desk.Press("SpeedButton6"), "");
  EXPECT_EQ(Process(), "ESTORNO DE COMPENSAÇÃO LANC. A1|3|A1");
}

}  // namespace
}  // namespace orv::test
