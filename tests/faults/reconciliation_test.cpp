// The workbench's reconciliation, undo and confirmed return file: all or nothing at every step, killed or
// not.
#include "tests/reconciliation/concilia_desk.h"
#include "tests/support/kills.h"

namespace orv::test {
namespace {

Json Click(std::string_view control) { return {{"do", "click"}, {"control", control}}; }
Json Set(std::string_view control, std::string_view value) {
  return {{"do", "set"}, {"control", control}, {"value", value}};
}
Json Tick(std::string_view grid, int row, std::string_view column) {
  return {{"do", "cell"}, {"control", grid}, {"row", row}, {"column", column}, {"value", "true"}};
}

struct TieAction {
  const char* name;
  // What a person does before, and the object that confirms.
  std::vector<Json> before;
  Json last;
};

class TieFaultsTest : public ConciliaTest {
 protected:
  TieFaultsTest() {
    Fin110();
    Written("cheques.ret", "0\n1341001212345-6   00010120261118\n1341001212345-6   00010220261118\n9\n");
    for (const char* n : {"1", "2"}) {
      Run("INSERT INTO RECEBER_001 (NUMERO, BANCO_CH, AGENCIA_CH, CONTA_CH, NUMERO_CH) VALUES ('TB" +
          std::string(n) + "', '341', '0012', '12345-6', '00010" + n + "')");
      Run("INSERT INTO RECEBERB_001 (NUMERO, LANCAMENTO) VALUES ('TB" + std::string(n) + "', 'B" + n + "')");
    }
    Restore();
  }

  // A cheque with its line, two movements with three lines, a tied cheque, two of the file's, as they were.
  void Restore() {
    for (const char* table : {"CONTACOR_001", "EXTRATO_001", "CHEQUE_PRE_001", "CONTABIL_001", "AUDITORIA"})
      Run("DELETE FROM " + std::string(table));
    Store(Mov{.numero = "A1", .docto = "71", .historico = "004"});
    Cheque("A1", "71");
    Store(Line{.lancto = "E1", .docto = "71"});
    Store(Mov{.numero = "C1", .docto = "C", .operacao = "+"});
    Store(Mov{.numero = "C2", .docto = "C", .operacao = "+"});
    for (const char* lancto : {"E2", "E3"}) Store(Line{.lancto = lancto, .docto = "C", .operacao = "C"});
    Store(Mov{.numero = "D1", .docto = "74", .pendente = "N", .lanc_con = "000099", .historico = "004"});
    Cheque("D1", "74", "B");
    Store(Line{.lancto = "E4", .conciliado = "S", .lanc_con = "000099"});
    Run("INSERT INTO CONTABIL_001 (LANCAMENTO, CONTA_C, CONTA_D, VALOR) VALUES ('000099', '1', '2', 100)");
    for (const char* numero : {"B1", "B2"}) Store(Mov{.numero = numero, .conta = kOutra});
  }
  // All rows that the actions write, without the numbers that are drawn.
  std::string Left() {
    return Sql("SELECT LANCAMENTO, PENDENTE, DT_CONT, CHAR_LENGTH(LANC_CON) FROM CONTACOR_001 ORDER BY 1") +
           "/" + Sql("SELECT LANCTO, CONCILIADO, CHAR_LENGTH(LANC_CON) FROM EXTRATO_001 ORDER BY 1") + "/" +
           Cheques() + "/" + Sql("SELECT CONTA_C, CONTA_D, VALOR FROM CONTABIL_001 ORDER BY 1, 2") + "/" +
           Sql("SELECT COUNT(*) FROM AUDITORIA");
  }

  std::vector<TieAction> Actions(const std::string& file = "cheques.ret") {
    const Json open{{"do", "open"}, {"class", "TFmConcilia"}}, yes{{"do", "answer"}, {"value", "yes"}},
        page{{"do", "page"}, {"control", "PageControl1"}, {"page", "TabSheet2"}};
    const Json account = Set("EdtConta", kConta), consult = Click("BitBtn1");
    const auto mov = [](int row) { return Tick("OrvDBGrid1", row, "Conciliar"); };
    const auto arq = [](int row) { return Tick("OrvDBGrid2", row, "Concilia"); };
    return {
        {"cheque", {open, account, Set("EdtDocto", "71"), consult, mov(0), arq(0), Click("BitBtn4")}, yes},
        {"several",
         {open, account, Set("EdtDocto", "C"), consult, mov(0), mov(1), arq(0), arq(1)},
         Click("BitBtn4")},
        {"undo",
         {open, account, Set("RgBusca", "Conciliados"), Set("EdtDocto", "74"), consult, Click("BitBtn8")},
         yes},
        // Its success is told, and told after the commit.
        {"return",
         {open,
          page,
          Set("EdtCam", file),
          Set("EdtArq", ""),
          Set("EdtContaArq", kOutra),
          Click("BitBtn6"),
          {{"do", "answer"}, {"value", "ok"}}},
         Click("BitBtn10")},
    };
  }
};

TEST_F(TieFaultsTest, EveryStatementCanFail) {
  // The layout of the return belongs to this account's bank.
  Run("UPDATE POSICAO_001 SET BANCO = '902', TIPO = 'EX' WHERE BANCO = '901'");
  // The rows that an action writes are counted, and the one that is aimed at is refused.
  Ddl("CREATE SEQUENCE G_PARADA");
  Ddl("CREATE TABLE PARADA (ALVO BIGINT)");
  Ddl("CREATE EXCEPTION E_PARADA 'stop here'");
  for (const char* table : {"CONTACOR_001", "EXTRATO_001", "CHEQUE_PRE_001", "CONTABIL_001", "AUDITORIA"}) {
    Ddl("CREATE TRIGGER T_" + std::string(table) + " FOR " + table +
        " AFTER INSERT OR UPDATE OR DELETE AS BEGIN IF (GEN_ID(G_PARADA, 1) = (SELECT ALVO FROM PARADA)) "
        "THEN EXCEPTION E_PARADA; END");
  }
  Run("INSERT INTO PARADA (ALVO) VALUES (-1)");
  for (const TieAction& action : Actions()) {
    SCOPED_TRACE(action.name);
    Desk desk(database_);
    int rows = 0;
    for (bool whole = false; !whole && rows < 30; ++rows) {
      Run("UPDATE PARADA SET ALVO = -1");
      Restore();
      const std::string before = Left();
      for (const Json& in : action.before) desk.Do(in);
      const std::string ticked = Ticked(desk);
      Run("UPDATE PARADA SET ALVO = GEN_ID(G_PARADA, 0) + 1 + " + std::to_string(rows));
      desk.Do(action.last);
      whole = !desk.Messages().starts_with("error");
      if (whole) {
        EXPECT_NE(Left(), before);
        if (desk.End() != "idle") desk.Answer("ok");
      } else {
        EXPECT_EQ(desk.Messages(),
                  "error: O banco de dados recusou a operação. Nada foi gravado. Avise o suporte.");
        EXPECT_EQ(Left(), before) << rows;
        EXPECT_EQ(Ticked(desk), ticked);
      }
      EXPECT_EQ(desk.End(), "idle");
      while (!desk.State()["screens"].Items().empty()) desk.Do({{"do", "close"}});
    }
    EXPECT_GT(rows, 4);
    EXPECT_LT(rows, 30);
  }
}

TEST_F(TieFaultsTest, KilledActionsLeaveAllOrNothing) {
  Run("UPDATE POSICAO_001 SET BANCO = '902', TIPO = 'EX' WHERE BANCO = '901'");
  constexpr int kKills = 10;
  for (const TieAction& action : Actions(folder_.Path() / "cheques.ret")) {
    SCOPED_TRACE(action.name);
    ExpectAllOrNothing(
        kKills, action.last,
        [&] {
          Restore();
          LetGo();
          auto desk = std::make_unique<DriveProcess>(database_);
          for (const Json& in : action.before) desk->Do(in);
          return desk;
        },
        [&] { return Left(); });
  }
}

TEST_F(TieFaultsTest, AnOpenChangeElsewhereIsWaitedForAndTold) {
  Desk desk(database_);
  const TieAction several = Actions()[1];
  for (const Json& in : several.before) desk.Do(in);
  const std::string before = Left();
  Db().Execute("UPDATE EXTRATO_001 SET OBSERVACAO = 'ABERTO' WHERE LANCTO = 'E3'");
  desk.Click("BitBtn4");
  EXPECT_EQ(desk.Messages(),
            "error: Outro usuário está alterando o mesmo registro. Aguarde um instante e tente novamente.");
  Db().Rollback();
  EXPECT_EQ(Left(), before);
  EXPECT_EQ(Ticked(desk), "C1 C2 / E2 E3");
  desk.Click("BitBtn4");
  EXPECT_EQ(desk.Messages(), "");
  EXPECT_NE(Left(), before);
}

}  // namespace
}  // namespace orv::test
