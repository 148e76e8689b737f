// The workbench: what is ticked is tied under one number, and untied.
#include "tests/reconciliation/concilia_desk.h"

namespace orv::test {
namespace {

constexpr const char* kChanged = "depois da consulta. Nada foi gravado, e as marcações continuam na tela.";

class TieTest : public ConciliaTest {
 protected:
  // The number under which a movement was tied.
  std::string Tie(const std::string& numero) {
    return Sql("SELECT DISTINCT LANC_CON FROM CONTACOR_001 WHERE LANCAMENTO = '" + numero + "'");
  }
};

TEST_F(TieTest, SeveralLinesOneNumber) {
  for (const bool dated : {false, true}) {
    SCOPED_TRACE(dated);
    if (dated) Fin({110});
    Empty("CONTACOR_001 EXTRATO_001 AUDITORIA");
    Put(Movimento{.lancamento = "A1", .docto = "77"});
    // The same number and document on the other side is settled along, on another account not.
    Put(Movimento{.lancamento = "A1", .docto = "77", .dt_cont = "11/22/2026", .operacao = "+"});
    Put(Movimento{.lancamento = "A1", .docto = "77", .conta = kOutraConta});
    Put(Movimento{.lancamento = "A2"});
    Put(Extrato{.lancto = "E1", .valor = "1"});
    Put(Extrato{.lancto = "E2", .dt_cont = "11/12/2026", .valor = "40"});
    Put(Extrato{.lancto = "E3", .dt_cont = "11/13/2026", .valor = "60"});
    Desk desk(database_);
    EXPECT_EQ(Consult(Open(desk)), "A1 A2 / E1 E2 E3");
    TickMov(desk, 0);
    // The last ticked one stands before in the set.
    Tick(desk, {}, {2, 1});
    EXPECT_EQ(Totals(desk), "-100,00 -100,00 0,00");
    desk.Click("BitBtn4");
    EXPECT_EQ(desk.End() + desk.Messages(), "idle");
    EXPECT_EQ(Listed(desk), "A2 / E1");
    EXPECT_EQ(Totals(desk), "0,00 0,00 0,00");
    const std::string n = Sql("SELECT LANC_CON FROM EXTRATO_001 WHERE LANCTO = 'E3'");
    EXPECT_EQ(n.size(), 6U);
    EXPECT_EQ(Lines(), "E1|N|;E2|S|" + n + ";E3|S|" + n);
    EXPECT_EQ(Movements(),
              dated
                  ? "A1|N|" + n + "|2026-11-12;A1|N|" + n + "|2026-11-12;A1|S||2026-11-10;A2|S||2026-11-10"
                  : "A1|N|" + n + "|2026-11-22;A1|N|" + n + "|2026-11-10;A1|S||2026-11-10;A2|S||2026-11-10");
    EXPECT_EQ(Audit("CONCILIACAO"), "CONCILIACAO DO LANCAMENTO A1|3|A1");
    EXPECT_EQ(Audit("LINHA EXTRATO"), "CONCILIACAO " + n + "|3|E2;CONCILIACAO " + n + "|3|E3");
    EXPECT_EQ(Posted(), "");
  }
}

TEST_F(TieTest, NothingTickedDrawsANumberAndReloads) {
  Put(Movimento{.lancamento = "A1"});
  Desk desk(database_);
  Consult(Open(desk));
  Run("UPDATE CONTACOR_001 SET LANCAMENTO = 'A2'");
  desk.Click("BitBtn4");
  EXPECT_EQ(desk.End() + desk.Messages(), "idle");
  EXPECT_EQ(Listed(desk), "A2 / ");
  EXPECT_EQ(Lines() + Audit("CONCILIACAO"), "");
}

TEST_F(TieTest, MovementsThatCancelOutNeedNoLine) {
  Fin({110});
  Put(Movimento{.lancamento = "A1"});
  Put(Movimento{.lancamento = "A2", .operacao = "+"});
  // A line that has nothing to do with them doesn't date them.
  Put(Extrato{.lancto = "E1"});
  Desk desk(database_);
  Consult(Open(desk));
  Tick(desk, {0, 1}, {});
  EXPECT_EQ(desk.Press("BitBtn4"), "");
  const std::string n = Tie("A1");
  EXPECT_EQ(Movements(), "A1|N|" + n + "|2026-11-10;A2|N|" + n + "|2026-11-10");
}

TEST_F(TieTest, Refusals) {
  Put(Movimento{.lancamento = "A1"});
  Put(Movimento{.lancamento = "A2", .docto = "50", .valor = 50});
  Put(Movimento{.lancamento = "A3", .valor = "0.01"});
  Put(Cheque{.chave = "A2", .numero = "50"});
  Put(Extrato{.lancto = "E1"});
  Put(Extrato{.lancto = "E2", .valor = 50});
  Put(Extrato{.lancto = "E3", .operacao = "C"});
  Desk desk(database_);
  Open(desk);
  std::string ticked;
  const auto tick = [&](std::vector<int> movs, std::vector<int> arqs, const char* account) {
    return [&, movs, arqs, account] {
      if (!ticked.empty()) {
        EXPECT_EQ(Ticked(desk), ticked);
      }
      Consult(desk, {{"EdtConta", kConta}});
      Tick(desk, movs, arqs);
      desk.Set("EdtConta", account);
      ticked = Ticked(desk);
    };
  };
  const std::string differ = "Valores diferentes no Extrato. Impossível conciliar.";
  // A cent, the side, no movement, the account, several cheques.
  Refuses(desk, "BitBtn4", "CONTACOR_001 EXTRATO_001 CHEQUE_PRE_001 CONTABIL_001 AUDITORIA",
          {{{}, differ, "BitBtn4", "", tick({0, 2}, {0}, kConta)},
           {{}, differ, "BitBtn4", "", tick({0}, {2}, kConta)},
           {{}, differ, "BitBtn4", "", tick({}, {1}, kOutraConta)},
           {{},
            "A conta foi trocada depois da consulta. Consulte novamente.",
            "EdtConta",
            "",
            tick({0, 1}, {0, 1}, kOutraConta)},
           {{},
            "Impossível fazer a conciliação de múltiplos cheques ao mesmo tempo.",
            "BitBtn4",
            "",
            tick({0, 1}, {0, 1}, kConta)}});
  EXPECT_EQ(Ticked(desk), ticked);
}

TEST_F(TieTest, AChequeIsAccountedForAndUndone) {
  Put(Movimento{.lancamento = "A1", .docto = "77", .historico = "004"});
  Put(Cheque{.chave = "A1", .numero = "77"});
  Put(Extrato{.lancto = "E1", .dt_cont = "11/12/2026"});
  Put(Extrato{.lancto = "E2", .dt_cont = "11/13/2026", .valor = "9"});
  Run("UPDATE CLASSE_CONTA_001 SET CODCLI = '9' WHERE HISTORICO = '004'");
  Put(ClasseConta{
      .conta = "X", .classe = "0", .historico = "004", .conta_cont = "2.2", .codcli = "", .carteira = "0"});
  const std::string before = All();
  Desk desk(database_);
  Consult(Open(desk));
  Tick(desk, {0}, {0});
  desk.Click("BitBtn4");
  EXPECT_EQ(desk.End(), "waiting answer");
  // While the user thinks, others go on.
  Run("UPDATE CONTACOR_001 SET OBSERVACAO = 'SOLTO'");
  Run("UPDATE EXTRATO_001 SET OBSERVACAO = 'SOLTO'");
  desk.Answer("no");
  EXPECT_EQ(desk.End() + desk.Messages(), "idle");
  EXPECT_EQ(All(), before);
  EXPECT_EQ(Ticked(desk), "A1 / E1");

  desk.Press("BitBtn4", "yes");
  EXPECT_EQ(desk.End() + desk.Messages(), "idle");
  const std::string n = Tie("A1");
  EXPECT_EQ(Movements(), "A1|N|" + n + "|2026-11-10");
  EXPECT_EQ(Cheques(), "A1|B|2026-11-12");
  // Dated by the line at which the user stood, which is the one after the ticked one.
  EXPECT_EQ(Posted(),
            n + "|77|2.2|2.1.02.001|-|CC|004|100.0000|2026-11-13|000-00|COMPENSACAO DO CHEQUE NR: 77");

  EXPECT_EQ(Consult(desk, {{"RgBusca", "Conciliados"}}), "A1 / E1");
  EXPECT_EQ(desk.Press("BitBtn8"), "Tem certeza que deseja voltar conciliação?");
  EXPECT_EQ(desk.Text("EdtConcilia"), n);
  const std::string tied = All();
  desk.Answer("no");
  EXPECT_EQ(All(), tied);
  desk.Press("BitBtn8", "yes");
  EXPECT_EQ(desk.End() + desk.Messages(), "idle");
  EXPECT_EQ(Movements() + Lines(), "A1|S||2026-11-10E1|N|;E2|N|");
  EXPECT_EQ(Cheques(), "A1|P|2026-11-12");
  EXPECT_EQ(Posted(), "");
  EXPECT_EQ(Audit("CONCILIACAO"),
            "CONCILIACAO DO LANCAMENTO A1|3|A1;VOLTA CONCILIACAO DO LANCAMENTO A1|3|A1");
  EXPECT_EQ(desk.Text("EdtConcilia"), "");
}

TEST_F(TieTest, TheUndoTakesTheWholeNumber) {
  for (const char* numero : {"A1", "A2"})
    Put(Movimento{.lancamento = numero, .pendente = "N", .lanc_con = "000009"});
  Put(Movimento{.lancamento = "A3", .pendente = "N"});
  Put(Extrato{.lancto = "E1", .conciliado = "S", .lanc_con = "000009"});
  Put(Partida{.lancamento = "000009"});
  Put(Rateio{.lancamento = "000009"});
  // A number that a movement bears as well.
  Put(Movimento{.lancamento = "A4", .pendente = "N", .lanc_con = "000010"});
  Put(Movimento{.lancamento = "000010", .conta = kOutraConta});
  Put(Partida{.lancamento = "000010", .observacao = "VENDA"});
  Put(Partida{.lancamento = "000010", .observacao = "COMPENSAÇÃO DOCTO NR: 1."});
  Desk desk(database_);
  EXPECT_EQ(Consult(Open(desk), {{"RgBusca", "Conciliados"}}), "A1 A2 A3 A4 / E1");
  // Cleared without a number: by the file of the other page, or by the ledger.
  desk.Stand("OrvDBGrid1", 2);
  EXPECT_EQ(desk.Told("BitBtn8"), "Lançamento sem conciliação. Impossível continuar.");
  desk.Stand("OrvDBGrid1", 1);
  desk.Click("BitBtn8");
  EXPECT_EQ(Listed(desk), "A1 A2 / E1");
  EXPECT_EQ(
      desk.Caption("LbVolta"),
      "A conciliação 000009 volta inteira: 2 lançamentos, total -200,00; 1 linha do extrato, total -100,00.");
  desk.Answer("yes");
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM CENTRO_RATEIO_001 WHERE LANCAMENTO = '000009'"), "0");
  EXPECT_TRUE(
      Movements().ends_with("A1|S||2026-11-10;A2|S||2026-11-10;A3|N||2026-11-10;A4|N|000010|2026-11-10"));
  EXPECT_EQ(Lines(), "E1|N|");
  EXPECT_EQ(Audit("CONCILIACAO"), "VOLTA CONCILIACAO DO LANCAMENTO A1|3|A1");
  EXPECT_EQ(Audit("MOVIMENTO") + Audit("LINHA EXTRATO"),
            "VOLTA DA CONCILIACAO 000009|3|A2VOLTA DA CONCILIACAO 000009|3|E1");
  EXPECT_EQ(Listed(desk) + desk.Caption("LbVolta"), "A3 A4 / ");
  desk.Stand("OrvDBGrid1", 1);
  desk.Press("BitBtn8", "yes");
  EXPECT_EQ(Sql("SELECT LANCAMENTO, OBSERVACAO FROM CONTABIL_001"), "000010|VENDA");
}

TEST_F(TieTest, ClosedPeriodsStay) {
  struct Case {
    const char *kind, *account, *until;
    bool dated;
    const char* message;
  };
  const Case cases[] = {
      {"CT", kConta, "11/10/2026", false, "Período fechado até 10/11/2026 para a conta 10250-1."},
      {"CX", "", "11/10/2026", false, "Período do caixa fechado até 10/11/2026."},
      // The line's day alone is closed.
      {"CT", kConta, "11/08/2026", true, "Período fechado até 08/11/2026 para a conta 10250-1."},
      {"CT", kConta, "11/08/2026", false, ""},
      {"CT", kOutraConta, "11/10/2026", true, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.kind) + c.account + c.until + std::to_string(c.dated));
    Empty("CONTACOR_001 EXTRATO_001 BLOQUEIO");
    Run("DELETE FROM PARAMETRO WHERE NUMERO = 110");
    if (c.dated) Fin({110});
    Put(Movimento{.lancamento = "A1", .docto = "7"});
    Put(Extrato{.lancto = "E1", .dt_cont = "11/08/2026"});
    Put(Bloqueio{.tipo = c.kind, .conta = c.account, .ate = c.until});
    Desk desk(database_);
    Consult(Open(desk));
    Tick(desk, {0}, {0});
    const std::string before = All();
    EXPECT_EQ(desk.Press("BitBtn4"), c.message);
    EXPECT_EQ(All() == before, *c.message != '\0');
    if (*c.message != '\0') continue;
    // The way back, also of what stands in another account under the number.
    Run("DELETE FROM BLOQUEIO");
    Put(Movimento{
        .lancamento = "A1", .docto = "7", .conta = kOutraConta, .pendente = "N", .lanc_con = Tie("A1")});
    Put(Bloqueio{.tipo = "CT", .conta = kOutraConta, .ate = "11/10/2026"});
    Consult(desk, {{"RgBusca", "Conciliados"}});
    const std::string tied = All();
    EXPECT_EQ(desk.Told("BitBtn8"), "Período fechado até 10/11/2026 para a conta 20418-7.");
    EXPECT_EQ(desk.End() + All(), "idle" + tied);
  }
}

// Two users with the same rows on the screen.
TEST_F(TieTest, OneOfTwoTies) {
  Put(Movimento{.lancamento = "A1", .docto = "77", .historico = "004"});
  Put(Cheque{.chave = "A1", .numero = "77"});
  Put(Movimento{.lancamento = "A2"});
  Put(Extrato{.lancto = "E1"});
  Put(Extrato{.lancto = "E2"});
  Desk first(database_), second(database_);
  for (Desk* desk : {&first, &second}) {
    Consult(Open(*desk));
  }
  // The same line for another movement.
  TickMov(first, 1);
  TickArq(first, 0);
  TickMov(second, 0);
  TickArq(second, 0);
  second.Click("BitBtn4");
  EXPECT_EQ(second.End(), "waiting answer");
  EXPECT_EQ(first.Press("BitBtn4"), "");
  const std::string tied = All();
  second.Answer("yes");
  EXPECT_EQ(second.Messages(),
            std::string("error: Outro usuário alterou ou conciliou a linha E1 do extrato ") + kChanged);
  EXPECT_EQ(All(), tied);
  EXPECT_EQ(Ticked(second), "A1 / E1");
  // With another line it goes.
  TickArq(second, 0, false);
  TickArq(second, 1);
  second.Press("BitBtn4", "yes");
  EXPECT_EQ(second.Messages(), "");
  EXPECT_EQ(Sql("SELECT COUNT(DISTINCT LANC_CON) FROM EXTRATO_001 WHERE CONCILIADO = 'S'"), "2");

  // Both undo the same one.
  for (Desk* desk : {&first, &second}) {
    Consult(*desk, {{"RgBusca", "Conciliados"}});
    desk->Click("BitBtn8");
  }
  second.Answer("yes");
  EXPECT_EQ(second.Messages(), "");
  const std::string untied = All();
  first.Answer("yes");
  EXPECT_TRUE(first.Messages().starts_with("error: Outro usuário já voltou a conciliação "))
      << first.Messages();
  EXPECT_EQ(All(), untied);
}

TEST_F(TieTest, WhatChangedSinceTheLoadIsntTied) {
  struct Case {
    const char *change, *what;
  };
  const Case cases[] = {
      {"UPDATE CONTACOR_001 SET VALOR = 100.01", "o lançamento A1"},
      {"UPDATE CONTACOR_001 SET PENDENTE = 'N'", "o lançamento A1"},
      {"UPDATE CONTACOR_001 SET OPERACAO = '+'", "o lançamento A1"},
      {"DELETE FROM CONTACOR_001", "o lançamento A1"},
      {"UPDATE EXTRATO_001 SET VALOR = 99", "a linha E1 do extrato"},
      {"UPDATE EXTRATO_001 SET CONTA = '20418-7'", "a linha E1 do extrato"},
      {"UPDATE EXTRATO_001 SET CONCILIADO = 'S', LANC_CON = '000001'", "a linha E1 do extrato"},
      {"DELETE FROM EXTRATO_001", "a linha E1 do extrato"},
  };
  Desk desk(database_);
  Open(desk);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.change);
    Empty("CONTACOR_001 EXTRATO_001");
    // Others beside them are sent along.
    Put(Movimento{.lancamento = "A1"});
    Put(Extrato{.lancto = "E1"});
    Put(Movimento{.lancamento = "Z1", .docto = "2", .conta = kConta});
    Put(Extrato{.lancto = "Z2"});
    Consult(desk);
    for (const int row : {0, 1}) TickMov(desk, row);
    for (const int row : {0, 1}) TickArq(desk, row);
    Run(std::string(c.change) + (std::string_view(c.change).find("CONTACOR") != std::string_view::npos
                                     ? " WHERE LANCAMENTO = 'A1'"
                                     : " WHERE LANCTO = 'E1'"));
    const std::string before = All();
    EXPECT_EQ(desk.Press("BitBtn4"),
              "error: Outro usuário alterou ou conciliou " + std::string(c.what) + " " + kChanged);
    EXPECT_EQ(All(), before);
    EXPECT_TRUE(Ticked(desk) == "A1 Z1 / E1 Z2" || Ticked(desk) == "Z1 A1 / Z2 E1") << Ticked(desk);
  }
}

}  // namespace
}  // namespace orv::test
