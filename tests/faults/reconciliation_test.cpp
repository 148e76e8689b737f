// The workbench's reconciliation, undo and confirmed return file: all or nothing at every step, killed or
// not.
#include "tests/faults/actions.h"
#include "tests/reconciliation/concilia_desk.h"

namespace orv::test {
namespace {

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
    const std::string open = "open TFmConcilia; EdtConta=10250-1; ";
    const auto ticks = [](const std::string& row) {
      return "; cell OrvDBGrid1 " + row + " Conciliar true; cell OrvDBGrid2 " + row + " Concilia true";
    };
    return {
        {"cheque", open + "EdtDocto=71; click BitBtn1" + ticks("0") + "; click BitBtn4; yes"},
        {"several", open + "EdtDocto=C; click BitBtn1" + ticks("0") + ticks("1") + "; click BitBtn4"},
        {"undo", open + "RgBusca=Conciliados; EdtDocto=74; click BitBtn1; click BitBtn8; yes"},
        // Its success is told, and told after the commit.
        {"return", "open TFmConcilia; page TabSheet2; EdtCam=" + file +
                       "; EdtArq=; EdtContaArq=20418-7; click BitBtn6; ok; click BitBtn10"},
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
  const auto steps = [&](const std::string& acquirer, const std::string& kind, const char* file) {
    return "open TFmConcilia; page TabSheet3; cbCartao_Operadora=" + acquirer +
           "; CbCartao_TipoConcilia=" + kind + "; EdCartao_Arquivo=" + (folder_.Path() / file).string();
  };
  KilledAnywhere({{"cards", steps("Rede", "Conta Corrente", "pagtos.csv") +
                                "; EdtCodBanco=955; click BtCartao_Consultar; click BitBtn13; yes"},
                  {"orders", steps("Cielo", "Pedido", "pedidos.csv") +
                                 "; EdtContaMoeda=10250-1; click BtCartao_Consultar; click BitBtn13; "
                                 "20/11/2026; yes"}},
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
