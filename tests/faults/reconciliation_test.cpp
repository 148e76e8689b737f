// The workbench's reconciliation, undo and confirmed return file: all or nothing at every step, killed or
// not.
#include "tests/faults/actions.h"
#include "tests/reconciliation/concilia_desk.h"

namespace orv::test {
namespace {

Json DoTick(std::string_view grid, int row, std::string_view column) {
  return {{"do", "cell"}, {"control", grid}, {"row", row}, {"column", column}, {"value", "true"}};
}

class TieFaultsTest : public Actions<ConciliaTest> {
 protected:
  TieFaultsTest() {
    Fin({110});
    Written("cheques.ret", "0\n1341001212345-6   00010120261118\n1341001212345-6   00010220261118\n9\n");
    for (const std::string n : {"1", "2"}) {
      Put(Receber{.numero = "TB" + n,
                  .numero_ch = "00010" + n,
                  .conta_ch = "12345-6",
                  .agencia_ch = "0012",
                  .banco_ch = "341"});
      Put(Receberb{.numero = "TB" + n, .lancamento = "B" + n});
    }
    // The layout of the return belongs to this account's bank.
    Run("UPDATE POSICAO_001 SET BANCO = '902', TIPO = 'EX' WHERE BANCO = '901'");
  }

  // A cheque with its line, two movements with three lines, a tied cheque, two of the file's, as they were.
  void Restore(const Action&) override {
    Empty("CONTACOR_001 EXTRATO_001 CHEQUE_PRE_001 CONTABIL_001 AUDITORIA");
    Put(Movimento{.lancamento = "A1", .docto = "71", .historico = "004"});
    Put(Cheque{.chave = "A1", .numero = "71"});
    Put(Extrato{.lancto = "E1", .docto = "71"});
    Put(Movimento{.lancamento = "C1", .docto = "C", .operacao = "+"});
    Put(Movimento{.lancamento = "C2", .docto = "C", .operacao = "+"});
    for (const char* lancto : {"E2", "E3"}) Put(Extrato{.lancto = lancto, .docto = "C", .operacao = "C"});
    Put(Movimento{
        .lancamento = "D1", .docto = "74", .historico = "004", .pendente = "N", .lanc_con = "000099"});
    Put(Cheque{.chave = "D1", .numero = "74", .status = "B"});
    Put(Extrato{.lancto = "E4", .conciliado = "S", .lanc_con = "000099"});
    Put(Partida{.lancamento = "000099"});
    for (const char* numero : {"B1", "B2"}) Put(Movimento{.lancamento = numero, .conta = kOutraConta});
  }
  // All rows that the actions write, without the numbers that are drawn.
  std::string Left() override {
    return Sql("SELECT LANCAMENTO, PENDENTE, DT_CONT, CHAR_LENGTH(LANC_CON) FROM CONTACOR_001 ORDER BY 1") +
           "/" + Sql("SELECT LANCTO, CONCILIADO, CHAR_LENGTH(LANC_CON) FROM EXTRATO_001 ORDER BY 1") + "/" +
           Cheques() + "/" + Sql("SELECT CONTA_C, CONTA_D, VALOR FROM CONTABIL_001 ORDER BY 1, 2") + "/" +
           Sql("SELECT COUNT(*) FROM AUDITORIA");
  }

  std::string Kept(const Action&, Desk& desk) override { return Ticked(desk); }

  std::vector<Action> All(const std::string& file = "cheques.ret") {
    const Json open{{"do", "open"}, {"class", "TFmConcilia"}}, yes{{"do", "answer"}, {"value", "yes"}},
        page{{"do", "page"}, {"control", "PageControl1"}, {"page", "TabSheet2"}};
    const Json account = DoSet("EdtConta", kConta), consult = DoClick("BitBtn1");
    const auto mov = [](int row) { return DoTick("OrvDBGrid1", row, "Conciliar"); };
    const auto arq = [](int row) { return DoTick("OrvDBGrid2", row, "Concilia"); };
    return {
        {"cheque",
         {open, account, DoSet("EdtDocto", "71"), consult, mov(0), arq(0), DoClick("BitBtn4")},
         yes},
        {"several",
         {open, account, DoSet("EdtDocto", "C"), consult, mov(0), mov(1), arq(0), arq(1)},
         DoClick("BitBtn4")},
        {"undo",
         {open, account, DoSet("RgBusca", "Conciliados"), DoSet("EdtDocto", "74"), consult,
          DoClick("BitBtn8")},
         yes},
        // Its success is told, and told after the commit.
        {"return",
         {open,
          page,
          DoSet("EdtCam", file),
          DoSet("EdtArq", ""),
          DoSet("EdtContaArq", kOutraConta),
          DoClick("BitBtn6"),
          {{"do", "answer"}, {"value", "ok"}}},
         DoClick("BitBtn10")},
    };
  }
};

TEST_F(TieFaultsTest, EveryStatementCanFail) {
  EveryRowCanFail(All(), "CONTACOR_001 EXTRATO_001 CHEQUE_PRE_001 CONTABIL_001 AUDITORIA");
}

TEST_F(TieFaultsTest, KilledActionsLeaveAllOrNothing) {
  KilledAnywhere(All(folder_.Path() / "cheques.ret"), 10);
}

// Two sales' movements that an acquirer has paid. What fails there is told and leaves nothing, so that only
// kills are left to try.
class CardFaultsTest : public TieFaultsTest {
 protected:
  CardFaultsTest() {
    Empty("VENDA_001 CONDIVENDA_001 ITCONDIVENDA_001 RECEBERB_001");
    for (const int n : {1, 2}) {
      const std::string sale = "V" + std::to_string(n);
      Put(Venda{.codven = sale});
      Put(Condivenda{.cdcondivenda = n, .cdvenda = sale});
      Put(Itcondivenda{.cditcondivenda = n, .cdcondivenda = n, .transacao = "A" + std::to_string(n) + "/9"});
      Put(Receberb{.numero = sale + "C/1", .lancamento = "C" + std::to_string(n)});
    }
    Empty("RECEBER_001 PEDIDO_001");
    Run("INSERT INTO PEDIDO_001 (NUMERO, CODCLI, DT_EMISSAO, ID_TRANSACAO) VALUES ('P1', '00002', "
        "'11/01/2026', "
        "'TX1')");
    Written("pedidos.csv", "\n\n\n\n;Pix;;;;;10/11/2026;;;1;;;;TX1;;100.00;97.00;;;;ID1\n");
    Written("pagtos.csv",
            "t\n2026-11-17;A1;9;Visa;1;1;100;100;0;100\n2026-11-17;A2;9;Visa;1;1;100;100;0;100\n");
  }
  void Restore(const Action& action) override {
    TieFaultsTest::Restore(action);
    Run("UPDATE CONTACOR_001 SET TIPO = 'LJ' WHERE DOCTO = 'C'");
    Run("DELETE FROM RECEBERB_001 WHERE NUMERO = 'P1/1'");
    Empty("RECEBER_001");
    Put(Receber{.numero = "P1/1", .dt_vencto = "12/01/2026", .classe = "1101", .status = "N"});
    Run("UPDATE RECEBER_001 SET VALOR = 100, HISTORICO = '014', PEDIDO = 'P1'");
  }
  std::string Left() override {
    return Sql("SELECT VALOR_PAGO, DESCONTO FROM RECEBER_001") + "/" +
           Sql("SELECT NUMERO, VALOR_PAGO, DESCONTO2 FROM RECEBERB_001 ORDER BY 1, 2") + "/" +
           Sql("SELECT TIPO, VALOR, PENDENTE, CHAR_LENGTH(LANC_CON) FROM CONTACOR_001 WHERE TIPO IN ('LJ', "
               "'R') AND CONTA = '" +
               std::string(kConta) + "' ORDER BY LANCAMENTO, VALOR") +
           "/" + Sql("SELECT VALOR, ORIGEM FROM CONTABIL_001 ORDER BY 1, 2") + "/" +
           Sql("SELECT COUNT(*) FROM AUDITORIA");
  }
};

TEST_F(CardFaultsTest, KilledActionsLeaveAllOrNothing) {
  const Json open{{"do", "open"}, {"class", "TFmConcilia"}}, yes{{"do", "answer"}, {"value", "yes"}},
      page{{"do", "page"}, {"control", "PageControl1"}, {"page", "TabSheet3"}};
  const auto file = [&](const char* name) {
    return DoSet("EdCartao_Arquivo", (folder_.Path() / name).string());
  };
  KilledAnywhere(
      {{"cards",
        {open, page, DoSet("cbCartao_Operadora", "Rede"), DoSet("CbCartao_TipoConcilia", "Conta Corrente"),
         DoSet("EdtCodBanco", "955"), file("pagtos.csv"), DoClick("BtCartao_Consultar"), DoClick("BitBtn13")},
        yes},
       {"orders",
        {open,
         page,
         DoSet("cbCartao_Operadora", "Cielo"),
         DoSet("CbCartao_TipoConcilia", "Pedido"),
         file("pedidos.csv"),
         DoSet("EdtContaMoeda", kConta),
         DoClick("BtCartao_Consultar"),
         DoClick("BitBtn13"),
         {{"do", "answer"}, {"value", "20/11/2026"}}},
        yes}},
      10);
}

TEST_F(TieFaultsTest, AnOpenChangeElsewhereIsWaitedForAndTold) {
  Desk desk(database_);
  const Action several = All()[1];
  Restore(several);
  for (const Json& in : several.before) desk.Do(in);
  AnOpenChangeIsTold(desk, "UPDATE EXTRATO_001 SET OBSERVACAO = 'ABERTO' WHERE LANCTO = 'E3'", [&] {
    EXPECT_EQ(Ticked(desk), "C1 C2 / E2 E3");
    desk.Click("BitBtn4");
  });
}

}  // namespace
}  // namespace orv::test
