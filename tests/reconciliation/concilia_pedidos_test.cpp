// The workbench: orders paid on line against the files of card acquirers.
#include "host/print/writers.h"
#include "tests/reconciliation/concilia_desk.h"

namespace orv::test {
namespace {

constexpr const char* kTables =
    "RECEBER_001 RECEBERB_001 CONTACOR_001 CONTABIL_001 CENTRO_RATEIO_001 EXTRATO_001 AUDITORIA";
constexpr const char* kDay = "20/11/2026";
constexpr const char* kWritten = "Operação concluída com sucesso.";

// A line of an acquirer's file: proof, instalment, gross, net, operation, fee.
using FileLine = std::vector<std::string>;
// Where the acquirers have these fields, the means of payment and the day, from 0, by their number on the
// page.
const std::map<int, std::vector<std::size_t>> kPlaces = {
    {2, {13, 9, 15, 16, 20, 21, 1, 6}}, {3, {4, 5, 7, 12, 2, 11, 6, 0}}, {4, {2, 10, 20, 5, 4, 21, 3, 0}}};

class PedidosTest : public ConciliaTest {
 protected:
  PedidosTest() { Empty("RECEBER_001 RECEBERB_001 PEDIDO_001 POSICAO_001 CENTRO_RATEIO_001 BLOQUEIO"); }

  // An order with receivables of 100,00 each.
  void Order(const std::string& number, const std::string& transaction, int parts = 1,
             const std::string& classe = "1101") {
    Run("INSERT INTO PEDIDO_001 (NUMERO, CODCLI, PED_CLI, DT_EMISSAO, ID_TRANSACAO) VALUES ('" + number +
        "', '00002', 'WEB', '11/01/2026', '" + transaction + "')");
    for (int p = 1; p <= parts; ++p) {
      const std::string title = number + "/" + std::to_string(p);
      Put(Receber{.numero = title, .dt_vencto = "12/01/2026", .classe = classe, .status = "N"});
      Run("UPDATE RECEBER_001 SET VALOR = 100, HISTORICO = '014', PEDIDO = '" + number +
          "' WHERE NUMERO = '" + title + "'");
    }
  }
  void File(Desk& desk, int acquirer, const std::vector<FileLine>& lines) {
    Report report;
    ReportRows& sheet = report.sets.emplace_back();
    sheet.fields.assign(22, "C");
    sheet.types.assign(22, FieldType::String);
    std::string text = "\n\n\n\n";
    const std::vector<std::size_t>& places = kPlaces.at(acquirer);
    for (const FileLine& line : lines) {
      std::vector<std::string> cells(22);
      for (std::size_t i = 0; i < line.size(); ++i) cells[places[i]] = line[i];
      cells[places[6]] = "Pix";
      cells[places[7]] = "10/11/2026";
      sheet.rows.emplace_back(cells.begin(), cells.end());
      text += Join(cells, ";") + "\n";
    }
    const std::string name = "pedidos" + std::to_string(++files_) + (acquirer == 2 ? ".csv" : ".xlsx");
    Written(name, text);
    if (acquirer != 2) WriteReport(report, "xlsx", folder_.Path() / name);
    desk.Set("EdCartao_Arquivo", name);
  }
  static void Begin(Desk& desk, int acquirer) {
    desk.Open("TFmConcilia");
    desk.Page("TabSheet3");
    desk.Set("cbCartao_Operadora", std::to_string(acquirer));
    if (acquirer == 2) desk.Set("CbCartao_TipoConcilia", "Pedido");
    desk.Set("EdtContaMoeda", kConta);
  }
  std::string Consult(Desk& desk, int acquirer, const std::vector<FileLine>& lines) {
    File(desk, acquirer, lines);
    const std::string said = desk.Press("BtCartao_Consultar");
    return said + desk.Column("TbVendas", "TITULO") + " " + desk.Column("TbVendas", "SEL") + " / " +
           desk.Column("TbCartao_Arq", "SEL");
  }
  // Presses "Gravar", gives the day and says yes to the accounting; what is told at last.
  static std::string Write(Desk& desk, const std::string& day = kDay, const char* yes = "yes") {
    desk.Click("BitBtn13");
    desk.Answer(day);
    if (desk.End() == "waiting answer" && desk.Messages().empty()) desk.Answer(yes);
    return desk.Told();
  }
  // Paid, discount, interest.
  std::string Titles() {
    return Sql(
        "SELECT CAST(VALOR_PAGO AS INT) || ' ' || CAST(DESCONTO AS INT) || ' ' || CAST(JUROS AS INT) "
        "FROM RECEBER_001 ORDER BY NUMERO");
  }
  // Paid, interest, discount, operation, note, commission, days of payment and accounting.
  std::string Settled(const std::string& title) {
    return Sql(
        "SELECT CAST(VALOR_PAGO AS INT) || ' ' || CAST(JUROS AS INT) || ' ' || CAST(DESCONTO2 AS INT) "
        "|| ' ' || DOCTO || ' ' || OBS || ' ' || COMISSAO || ' ' || EXTRACT(DAY FROM DT_PAGTO) || ' ' "
        "|| EXTRACT(DAY FROM DT_CONT) FROM RECEBERB_001 WHERE NUMERO = '" +
        title + "' ORDER BY DOCTO, COMISSAO DESC");
  }
  std::string Ledger() { return Sql("SELECT CAST(VALOR AS INT), GRUPO, PENDENTE FROM CONTACOR_001"); }
  std::string Entries(const std::string& title) {
    return Sql("SELECT ORIGEM || ' ' || CAST(VALOR AS INT) FROM CONTABIL_001 WHERE DOCTO2 = '" + title + "'");
  }
  // Movement, settlements and entries bear one number.
  std::string Number() {
    return Sql(
        "SELECT LANCAMENTO FROM CONTACOR_001 UNION SELECT LANCAMENTO FROM RECEBERB_001 UNION SELECT "
        "LANCAMENTO FROM CONTABIL_001");
  }
  int files_ = 0;
};

TEST_F(PedidosTest, APaymentIsSplitAndASecondRunReplacesIt) {
  Order("000001", "TX1");
  Order("000002", "TX2", 1, "1102");
  Order("000003", "TX3");
  Run("UPDATE RECEBER_001 SET VALOR_PAGO = 100 WHERE PEDIDO = '000003'");
  Order("000004", "");
  Desk desk(database_);
  Begin(desk, 2);
  desk.Set("RgCartao_Busca", "Todos");
  const std::vector<FileLine> file = {{"TX1", "01", "100.00", "97.00", "OP1"},
                                      {"TX2", "1", "100.00", "96.00", "OP2"},
                                      {"TX9", "1", "10.00", "9.00", "OP9"}};
  EXPECT_EQ(Consult(desk, 2, file), "000001/1 000002/1 000003/1 1 1 1 / 1 1 0");
  EXPECT_TRUE(desk.Read("TbVendas", {"PARCELA", "CODVEN", "EMP", "CODCLI", "PEDCLI"})
                  .starts_with("1/1|000001|_001|00002|WEB\n"));
  EXPECT_EQ(Write(desk), kWritten);
  const std::string first = Number(), titles = "97 3 0;96 4 0;100 0 0;0 0 0", ledger = "193|1102|S",
                    settled = "97 0 0 OP1  S 10 20;0 0 3 OP1  N 10 20";
  EXPECT_EQ(first.size(), 6U);
  EXPECT_EQ(Titles() + Settled("000001/1") + Ledger(), titles + settled + ledger);
  EXPECT_EQ(Sql("SELECT BANCO, CONTA, TIPO, TIPO_DOC, OPERACAO, HISTORICO, OBSERVACAO, CHAR_LENGTH(DOCTO), "
                "DT_LAN, DT_CONT, DT_VENCTO FROM CONTACOR_001"),
            "901|10250-1|R|DP|+|014|Conciliação de cartões|8|2026-11-20|2026-11-20|2026-11-20");
  EXPECT_EQ(Sql("SELECT DOCTO2, CONTA_C, CONTA_D, OPERACAO, ORIGEM, VALOR FROM CONTABIL_001"),
            "000001/1|00002|10250-1|+|RR|97.0000;000001/1|00002|00002|-|RC|3.0000;"
            "000002/1|00002|10250-1|+|RR|96.0000;000002/1|00002|00002|-|RC|4.0000");
  EXPECT_EQ(Audit("CONCILIACAO"),
            "CONCILIACAO CARTAO DO LANCAMENTO TX1 PEDIDO 000001|3|000001;"
            "CONCILIACAO CARTAO DO LANCAMENTO TX2 PEDIDO 000002|3|000002");

  // Once more without consulting, then after it: the rows are replaced, under new numbers.
  Put(Rateio{.lancamento = first});
  for (const bool again : {false, true}) {
    if (again) Consult(desk, 2, file);
    const std::string number = Number();
    EXPECT_EQ(Write(desk), kWritten);
    EXPECT_EQ(Titles() + Settled("000001/1") + Ledger(), titles + settled + ledger);
    EXPECT_EQ(Number().size(), 6U);
    EXPECT_NE(Number(), number);
  }
  EXPECT_EQ(Count("CENTRO_RATEIO_001"), "0");

  // One receivable alone takes the movement of both along, and the page says so; a net of 0 takes back.
  Consult(desk, 2, {{"TX1", "1", "100.00", "0.00", "OP1"}});
  const std::string gone = Sql("SELECT LANCAMENTO FROM CONTACOR_001");
  EXPECT_EQ(Write(desk), kWritten);
  EXPECT_EQ(desk.Caption("LbCartao"),
            "Esta gravação substitui o lançamento " + gone +
                ", que tem 1 baixa que ela não grava de novo, total 96,00: fica sem lançamento na conta.");
  EXPECT_EQ(Titles() + Settled("000001/1") + Ledger() + Entries("000002/1"), "0 0 0;96 4 0;100 0 0;0 0 0");
}

TEST_F(PedidosTest, WhatTheAcquirersDoDifferently) {
  // What it comes to: of both instalments, of the first one's settlements, of the ledger with the first one's
  // entries.
  struct Case {
    const char* what;
    int acquirer;
    std::vector<FileLine> lines;
    const char *titles, *settled, *posted;
  };
  const Case cases[] = {
      {"the fee is what the receivable lacks, and the means of payment is noted",
       4,
       {{"TX1", "1", "", "97", "OP1", "9"}},
       "97 3 0",
       "97 0 0 OP1 Pix S 10 20;0 0 3 OP1 Pix N 10 20",
       "194|1101|S RR 97;RC 3"},
      {"instalments don't count, and the payment is of the accounting's day",
       3,
       {{"TX1", "1", "50", "48", "OP1", "-2"}, {"TX1", "2", "40", "39", "OP2", "1"}},
       "87 3 0",
       "48 0 0 OP1  S 20 20;0 0 2 OP1  N 20 20;39 0 0 OP2  S 20 20;0 0 1 OP2  N 20 20",
       "174|1101|S RR 48;RC 2;RR 39;RC 1"},
      {"a chargeback alone leaves no movement",
       2,
       {{"TX1", "2", "-100", "-97", "OP1"}},
       "0 0 100",
       "0 97 0 OP1  S 10 20;0 3 0 OP1  N 10 20",
       " RB 97;RA 3"},
      {"the second line of an operation stands in the first one's place",
       2,
       {{"TX1", "7", "100", "97", "OP1"},
        {"TX1", "7", "100", "95", "OP1"},
        {"TX1", "7", "-100", "-95", "OP2"},
        {"TX1", "7", "10", "9", "OP2"}},
       "104 6 0",
       "95 0 0 OP1  S 10 20;0 0 5 OP1  N 10 20;9 0 0 OP2  S 10 20;0 0 1 OP2  N 10 20",
       "208|1101|S RR 95;RC 5;RR 9;RC 1"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Empty("RECEBER_001 RECEBERB_001 PEDIDO_001 CONTACOR_001 CONTABIL_001");
    Order("000001", "TX1", 2);
    Desk desk(database_);
    Begin(desk, c.acquirer);
    const std::string all = std::string("1 1 1 1").substr(0, 2 * c.lines.size() - 1);
    EXPECT_EQ(Consult(desk, c.acquirer, c.lines), "000001/1 000001/2 1 1 / " + all);
    // The same once more.
    for (int run = 0; run < 2; ++run) {
      EXPECT_EQ(Write(desk), kWritten);
      EXPECT_EQ(Titles(), std::string(c.titles) + ";" + c.titles);
      EXPECT_EQ(Settled("000001/1"), c.settled);
      EXPECT_EQ(Ledger() + " " + Entries("000001/1"), c.posted);
    }
  }
}

TEST_F(PedidosTest, WhatIsRefusedWritesNothing) {
  Order("000001", "TX1");
  Order("000002", "TX2");
  const std::vector<FileLine> file = {{"TX1", "1", "100.00", "97.00", "OP1"},
                                      {"TX2", "1", "-100.00", "-97.00", "OP2"}};
  Desk desk(database_);
  Begin(desk, 2);
  desk.Set("RgCartao_Busca", "Todos");
  Consult(desk, 2, file);
  std::string before = Tables(kTables);
  const auto nothing = [&](const std::string& told, const std::string& expected) {
    EXPECT_EQ(told, expected);
    if (desk.End() != "idle") desk.Answer("cancel");
    EXPECT_EQ(desk.End(), "idle");
    EXPECT_EQ(Tables(kTables), before);
    EXPECT_FALSE(desk.Visible("LbCartao"));
  };
  for (const char* conta : {"999", "  "}) {
    desk.Set("EdtContaMoeda", conta);
    nothing(desk.Refused("BitBtn13"), "Conta corrente inválida. > EdtContaMoeda");
  }
  desk.Set("EdtContaMoeda", kConta);
  nothing(desk.Press("BitBtn13"), "");
  for (const char* day : {"", "31/02/2026"}) nothing(Write(desk, day), "Data inválida.");
  nothing(Write(desk, kDay, "no"), "");
  Put(Bloqueio{.tipo = "CT", .conta = kConta});
  nothing(Write(desk), "Período fechado até 20/11/2026 para a conta 10250-1.");
  Run("UPDATE BLOQUEIO SET TIPO = 'CX', CONTA = ''");
  nothing(Write(desk), "Período do caixa fechado até 20/11/2026.");
  Empty("BLOQUEIO");

  // Each row that is written, and each that a second run takes away and writes, is refused once.
  Stoppable("RECEBER_001 RECEBERB_001 CONTACOR_001 CONTABIL_001 AUDITORIA");
  for (const int run : {0, 1}) {
    int row = 0;
    for (before = Tables(kTables); row < 60; ++row) {
      StopAt(row);
      const std::string told = Write(desk);
      if (told == kWritten) break;
      ASSERT_TRUE(told.starts_with("error: ")) << told;
      nothing("", "");
    }
    StopAt(-1);
    // Two receivables, four settlements, four entries, two audit lines; then what they replace, with its
    // line, as well.
    EXPECT_EQ(row, run == 0 ? 12 : 21);
  }

  // What a former run wrote: its own period, and what was done with its movement since. Its total was 0: it
  // gets a movement of its own.
  before = Tables(kTables);
  Put(Bloqueio{.tipo = "CX", .conta = ""});
  nothing(Write(desk, "21/11/2026"), "Período do caixa fechado até 20/11/2026.");
  Empty("BLOQUEIO");
  const std::string number = Number();
  Put(Movimento{.lancamento = number, .dt_cont = "11/19/2026", .operacao = "+", .pendente = "N"});
  Put(Bloqueio{.tipo = "CT", .conta = kConta, .ate = "11/19/2026"});
  before = Tables(kTables);
  nothing(Write(desk), "Período fechado até 19/11/2026 para a conta 10250-1.");
  Empty("BLOQUEIO");
  Run("UPDATE CONTACOR_001 SET LANC_CON = '000777'");
  Put(Extrato{.conciliado = "S", .lanc_con = "000777"});
  before = Tables(kTables);
  nothing(Write(desk),
          "O lançamento " + number +
              ", de uma gravação anterior do título 000001/1, já está conciliado sob o número "
              "000777. Desfaça primeiro essa conciliação, ou desmarque o título, e grave de novo.");
}

TEST_F(PedidosTest, OfTwoUsersTheFirstOneSettles) {
  Order("000001", "TX1");
  const std::vector<FileLine> file = {{"TX1", "1", "100.00", "97.00", "OP1"}};
  Desk first(database_), second(database_);
  for (Desk* desk : {&first, &second}) {
    Begin(*desk, 2);
    desk->Set("RgCartao_Busca", "Todos");
    Consult(*desk, 2, file);
  }
  const std::string moved =
      "error: Outro usuário alterou o título 000001/1 depois da consulta. Nada foi "
      "gravado. Consulte novamente.";
  const std::string meanwhile =
      "error: Outro usuário alterou títulos destes pedidos durante a gravação. Nada "
      "foi gravado. Consulte novamente.";
  for (const bool replaces : {false, true}) {
    SCOPED_TRACE(replaces);
    // One of them is asked while the other one writes; replacing changes no amount.
    second.Click("BitBtn13");
    second.Answer(kDay);
    EXPECT_EQ(Write(first), kWritten);
    const std::string written = Tables(kTables);
    second.Answer("yes");
    EXPECT_EQ(second.Messages(), meanwhile);
    if (!replaces) {
      EXPECT_EQ(Write(second), moved);
    }
    EXPECT_EQ(Tables(kTables), written);
    Consult(second, 2, file);
  }
  EXPECT_EQ(Write(second), kWritten);
  EXPECT_EQ(Titles(), "97 3 0");
  Run("DELETE FROM RECEBER_001");
  EXPECT_EQ(Write(first),
            "error: Outro usuário excluiu títulos depois da consulta. Nada foi gravado. Consulte novamente.");
}

TEST_F(PedidosTest, FilesThatArentThereOrDontTellOperationsApart) {
  Order("000001", "TX1");
  Run("UPDATE EMPRESA SET EMP_SEP_DUPLI = '-' WHERE EMP_PAT = '_001'");
  Run("UPDATE RECEBER_001 SET NUMERO = '000001-2', DT_VENCTO = '11/25/2026'");
  for (const int acquirer : {2, 3, 4}) {
    SCOPED_TRACE(acquirer);
    Desk desk(database_);
    Begin(desk, acquirer);
    const auto consult = [&](const char* name) {
      desk.Set("EdCartao_Arquivo", name);
      const std::string told = desk.Told("BtCartao_Consultar");
      EXPECT_EQ(desk.Read("TbVendas", {"TITULO", "PARCELA"}), "000001-2|2/1\n");
      return told;
    };
    EXPECT_EQ(consult("falta"),
              acquirer == 2 ? "Arquivo não encontrado." : "error: Arquivo não encontrado: falta");
    Written("dados.CSV", "x");
    EXPECT_EQ(consult("dados.CSV"), std::string("Arquivo inválido. Tente novamente com um arquivo ") +
                                        (acquirer == 2 ? ".csv" : ".xlsx"));
    const std::string tables = Tables(kTables), fifteen(15, '7');
    EXPECT_TRUE(Consult(desk, acquirer,
                        {{"TX1", "1", "10", "9", fifteen + "A"}, {"TX1", "1", "10", "9", fifteen + "B"}})
                    .starts_with("error: As operações \"777777777777777A\" e "));
    EXPECT_EQ(Consult(desk, acquirer, {{"TX1", "1", "10", "9", ""}, {"TX1", "1", "10", "8", ""}}),
              "000001-2 1 / 1 1");
    EXPECT_TRUE(Write(desk).starts_with("error: O arquivo tem várias linhas da transação TX1 sem o ID"));
    // By itself a line without its operation settles, but never in another settlement's place.
    Consult(desk, acquirer, {{"TX1", "1", "10", "9", ""}});
    Put(Receberb{.numero = "000001-2", .dt_pagto = acquirer == 3 ? "11/20/2026" : "11/10/2026"});
    Run("UPDATE RECEBERB_001 SET DOCTO = ''");
    EXPECT_TRUE(Write(desk).starts_with("O arquivo não tem o ID da operação do título 000001-2, que já"));
    Empty("RECEBERB_001");
    EXPECT_EQ(Tables(kTables), tables);
    EXPECT_EQ(Write(desk) + Write(desk), std::string(kWritten) + kWritten);
    EXPECT_EQ(Count("RECEBERB_001") + Count("CONTACOR_001"), "21");
    Empty("RECEBERB_001 CONTACOR_001 CONTABIL_001 AUDITORIA");
    Run("UPDATE RECEBER_001 SET VALOR_PAGO = 0, DESCONTO = 0");
    desk.Set("DtCartao_Fim", "24/11/2026");
    desk.Click("BtCartao_Consultar");
    EXPECT_EQ(desk.Column("TbVendas", "TITULO"), "");
  }
}

}  // namespace
}  // namespace orv::test
