#include "host/schema/demo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>

#include "host/schema/check.h"
#include "host/schema/demo_files.h"
#include "host/schema/schema.h"
#include "host/schema/tables.h"
#include "host/sheet/sheet_reader.h"
#include "tests/support/desk_test.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

const Date kDay(2026, 11, 20);

// Each table's number of rows and the sum of its rows' hashes, which doesn't depend on their order.
class Digest : public RowSink {
 public:
  void Columns(const std::vector<Column>&) override {}
  bool Row(std::span<Value> values) override {
    std::size_t hash = 0;
    for (const Value& value : values) hash = hash * 1099511628211u + value.Hash() + 1;
    sum += hash;
    ++rows;
    return true;
  }
  std::size_t sum = 0;
  int64_t rows = 0;
};

std::map<std::string, std::pair<int64_t, std::size_t>> Digests(Attachment& db) {
  std::map<std::string, std::pair<int64_t, std::size_t>> digests;
  for (const std::string& company : CompanySuffixes(db))
    for (const TableDef& table : CompanyTables()) {
      Digest digest;
      db.Fetch("SELECT * FROM " + table.name + company, digest);
      digests[table.name + company] = {digest.rows, digest.sum};
    }
  return digests;
}

class Demo : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    db_ = new TempDatabase;
    MakeDemo(**db_, {1, kDay, 2});
  }
  static void TearDownTestSuite() {
    delete db_;
    db_ = nullptr;
  }
  void TearDown() override { Db().Rollback(); }

  static Attachment& Db() { return **db_; }
  static int64_t Count(const std::string& what) {
    return Db().Scalar("SELECT COUNT(*) FROM " + what).AsInteger();
  }
  static std::string Text(const std::string& select) { return Db().Scalar(select).AsString(); }

  static TempDatabase* db_;
};
TempDatabase* Demo::db_ = nullptr;

TEST_F(Demo, IsTheSameOnEveryRun) {
  TempDatabase other;
  MakeDemo(*other, {1, kDay, 2});
  const auto digests = Digests(Db());
  EXPECT_EQ(digests, Digests(*other));
  for (const auto& [table, digest] : digests) EXPECT_GT(digest.first, 0) << table;
}

TEST_F(Demo, HasEveryKindOfThing) {
  EXPECT_NEAR(static_cast<double>(Count("CONTACOR_001")), 4000, 200);
  EXPECT_NEAR(static_cast<double>(Count("CONTACOR_002")), 800, 60);
  EXPECT_NEAR(static_cast<double>(Count("RECEBER_001") + Count("PAGTO_001")), 800, 80);
  const auto each = [](const std::string& table, std::initializer_list<const char*> values) {
    for (const char* value : values) EXPECT_GT(Count(table + "'" + value + "'"), 0) << table << value;
  };
  each("CONTACOR_001 WHERE TIPO = ", {"L", "TR", "P", "R", "CH", "LJ"});
  each("CONTACOR_001 WHERE PENDENTE = ", {"S", "N", "C"});
  each("CHEQUE_PRE_001 WHERE TIPO = 'P' AND STATUS = ", {"P", "B", "C"});
  each("CHEQUE_PRE_001 WHERE TIPO = 'R' AND STATUS = ", {"P", "B", "D"});
  each("RECEBER_001 WHERE STATUS = ", {"N", "O", "A", "CH"});
  each("EXTRATO_001 WHERE CONCILIADO = ", {"N", "S"});
  EXPECT_GT(
      Count("PEDIDO_001 P INNER JOIN RECEBER_001 R ON (R.PEDIDO = P.NUMERO) WHERE P.ID_TRANSACAO > '' AND "
            "R.VALOR2 > R.VALOR_PAGO + R.DESCONTO"),
      0);
  EXPECT_EQ(Text("SELECT VALOR FROM PARAMETRO WHERE EMP_PAT = '_001' AND GRUPO = 'FAC' AND NUMERO = 80"),
            "00001");
  // Nothing happened after the day, and pending movements reach beyond it.
  EXPECT_EQ(Count("CONTACOR_001 WHERE DT_LAN > '11/20/2026' OR (PENDENTE <> 'S' AND DT_CONT > '11/20/2026')"),
            0);
  EXPECT_GT(Count("CONTACOR_001 WHERE DT_VENCTO > '11/20/2026'"), 0);
}

TEST_F(Demo, AddsUp) {
  // The master row of an account holds its settled balance.
  EXPECT_EQ(Count("CADCONTA_001 C WHERE C.SALDO <> (SELECT SUM(CASE WHEN M.OPERACAO = '+' THEN M.VALOR ELSE "
                  "-M.VALOR END) FROM CONTACOR_001 M WHERE M.CONTA = C.CONTA AND M.PENDENTE <> 'S')"),
            0);
  // A cheque is what it pays.
  EXPECT_EQ(
      Count("CHEQUE_PRE_001 C WHERE C.TIPO = 'P' AND C.STATUS <> 'C' AND C.VALOR <> (SELECT SUM(D.VALOR) "
            "FROM CHEQUE_DUP_001 D WHERE D.BANCO = C.BANCO AND D.CONTA = C.CONTA AND D.NUMERO = C.NUMERO)"),
      0);
  // Cost centres share out the entry that they hang from.
  EXPECT_EQ(Text("SELECT SUM(A.VALOR) - (SELECT SUM(R.VALOR_RAT) FROM CENTRO_RATEIO_001 R) FROM CONTABIL_001 "
                 "A WHERE EXISTS (SELECT 1 FROM CENTRO_RATEIO_001 R WHERE R.LANCAMENTO = A.LANCAMENTO)"),
            "0,00");
  // Rules share out the whole.
  EXPECT_EQ(Count("(SELECT CODIGO, CONTA FROM CONT_RATEIO_001 GROUP BY CODIGO, CONTA HAVING "
                  "ABS(SUM(PERC_CCUSTO) - 100) > 0.001)"),
            0);
  EXPECT_EQ(Count("(SELECT CODIGO FROM (SELECT DISTINCT CODIGO, CONTA, PERC_CONTA FROM CONT_RATEIO_001) "
                  "GROUP BY CODIGO HAVING ABS(SUM(PERC_CONTA) - 100) > 0.001)"),
            0);
}

class SheetCells : public SheetSink {
 public:
  bool Row(const SheetRow& row) override {
    auto& cells = rows.emplace_back();
    for (int column = 1; column <= row.Columns(); ++column) cells.emplace_back(row.Text(column));
    return true;
  }
  void TakeBack() noexcept override { rows.clear(); }
  std::vector<std::vector<std::string>> rows;
};

TEST_F(Demo, AcquirersFilesTellWhatWasSold) {
  std::set<std::string> keys;
  for (const auto& row : Db().Rows("SELECT TRANSACAO FROM ITCONDIVENDA_001 UNION SELECT ID_TRANSACAO FROM "
                                   "PEDIDO_001 WHERE ID_TRANSACAO > ''"))
    keys.insert(row[0].AsString());
  TempFolder folder, other;
  const std::vector<DemoFile> files = WriteDemoFiles(Db(), "_001", folder.Path());
  WriteDemoFiles(Db(), "_001", other.Path());
  EXPECT_EQ(files.size(), 14u);
  for (const DemoFile& file : files) {
    SCOPED_TRACE(file.name);
    const auto bytes = [&](const TempFolder& in) {
      std::ifstream stream(in.Path() / file.name, std::ios::binary);
      return std::string(std::istreambuf_iterator<char>(stream), {});
    };
    const std::string text = bytes(folder);
    EXPECT_EQ(text, bytes(other));
    SheetCells sheet;
    if (file.name.ends_with(".xlsx")) {
      SheetReader().Read(text, sheet);
    } else {
      for (const std::string& line : Split(text, "\r\n")) {
        if (file.name.ends_with(".csv")) sheet.rows.push_back(Split(line, ";"));
        if (file.name.ends_with(".txt") && line.starts_with('2')) sheet.rows.push_back({line.substr(92, 6)});
      }
    }
    // A number may stand in two cells; a further instalment of Stone's has that of the line before.
    int known = 0;
    bool found = false;
    for (const auto& cells : sheet.rows) {
      if (file.acquirer != "Stone" || cells.size() < 3 || !cells[2].empty()) found = false;
      for (std::size_t i = 0; i < cells.size(); ++i)
        found = found || keys.contains(cells[i]) || (i > 0 && keys.contains(cells[i - 1] + "/" + cells[i]));
      known += found ? 1 : 0;
    }
    EXPECT_EQ(known, file.known);
    EXPECT_LT(file.known, file.lines);
    EXPECT_GT(file.open, 0);
    EXPECT_GE(file.known, file.open);
  }
}

TEST(DemoOptionsTest, OutOfRangeIsRefused) {
  TempDatabase db;
  EXPECT_EQ(ErrorOf([&] { MakeDemo(*db, {0, kDay, 2}); }), "A escala da demonstração vai de 1 a 1000.");
  EXPECT_EQ(ErrorOf([&] { MakeDemo(*db, {1, kDay, 10}); }), "A demonstração tem de 1 a 9 empresas.");
  EXPECT_EQ(ErrorOf([&] {
              MakeDemo(*db, {1, Date(), 2});
            }),
            "A data da demonstração deve estar entre 1990 e 2190.");
  EXPECT_EQ(SchemaVersion(*db), 0);
}

// On a Sunday the last working day lies behind, and many companies differ from one another.
TEST(DemoOptionsTest, EveryDayAndCompanyGivesSoundData) {
  TempDatabase db;
  MakeDemo(*db, {1, Date(2024, 3, 31), 4});
  EXPECT_EQ(CheckData(*db), std::vector<std::string>{});
  EXPECT_EQ(db->Scalar("SELECT COUNT(*) FROM CONTACOR_004 WHERE DT_LAN > '03/31/2024'").AsInteger(), 0);
  EXPECT_EQ(db->Scalar("SELECT COUNT(*) FROM EXTRATO_001 WHERE DT_CONT > '03/31/2024'").AsInteger(), 0);
}

TEST_F(Demo, CheckFindsNothing) { EXPECT_EQ(CheckData(Db()), std::vector<std::string>{}); }

TEST_F(Demo, CheckFindsEachContradiction) {
  const Date day = kDay;
  // A movement that stands on its own, but for one thing.
  const auto movement = [&](Movimento m) {
    for (Cell* date : {&m.dt_lan, &m.dt_cont, &m.dt_vencto}) *date = day;
    return Insert(m);
  };
  const auto line = [&](const char* conciliado, Cell lanc_con = {}) {
    return Insert(Extrato{
        .lancto = "0", .dt_cont = day, .operacao = "C", .conciliado = conciliado, .lanc_con = lanc_con});
  };
  const std::string tied = Text("SELECT FIRST 1 LANC_CON FROM EXTRATO_001 WHERE CONCILIADO = 'S'");
  const std::string paid =
      Text("SELECT FIRST 1 NUMERO FROM RECEBER_001 WHERE STATUS = 'N' AND VALOR_PAGO = VALOR2");
  const std::string bill = Text("SELECT FIRST 1 NUM_AP FROM PAGTO_001 WHERE VAL_PAG = VALOR");
  const std::string cleared =
      Text("SELECT FIRST 1 CHAVE FROM CHEQUE_PRE_001 WHERE STATUS = 'B' ORDER BY CHAVE");
  const std::string transfer =
      Text("SELECT FIRST 1 LANCAMENTO FROM CONTACOR_001 WHERE TIPO = 'TR' ORDER BY LANCAMENTO");
  const struct {
    std::vector<std::string> plant;
    std::string found;
  } cases[] = {
      {{movement({.lancamento = "000000", .conta = "999"})},
       "lançamento 000000: a conta \"999\" não existe."},
      {{movement({.lancamento = "000000", .grupo = "9999"})},
       "lançamento 000000: a classe \"9999\" não existe."},
      {{movement({.lancamento = "000000", .grupo = "11"})},
       "lançamento 000000: a classe \"11\" é do tipo título."},
      {{movement({.lancamento = "000000"}), movement({.lancamento = "000000"})},
       "lançamento 000000, documento \"1\", conta \"10250-1\", operação \"-\": gravado 2 vezes."},
      {{"DELETE FROM CONTACOR_001 WHERE LANCAMENTO = " + Quote(transfer) + " AND OPERACAO = '+'",
        // What the deleted side was tied to goes with it.
        "UPDATE EXTRATO_001 E SET CONCILIADO = 'N', LANC_CON = '' WHERE CONCILIADO = 'S' AND NOT EXISTS "
        "(SELECT 1 FROM CONTACOR_001 M WHERE M.LANC_CON = E.LANC_CON)"},
       "transferência " + transfer + ": a saída e a entrada não se igualam."},
      {{movement({.lancamento = "000000", .pendente = "S", .lanc_con = "7"})},
       "lançamento 000000: pendente, mas com a conciliação 7."},
      {{line("S")}, "linha de extrato 0 da conta 10250-1: conciliada sem número de conciliação."},
      {{line("S", "5")}, "linha de extrato 0: nenhum lançamento da conta 10250-1 tem a conciliação 5."},
      {{line("N", "5")}, "linha de extrato 0: não conciliada, mas com a conciliação 5."},
      {{"UPDATE EXTRATO_001 SET VALOR = VALOR + 0.01 WHERE LANC_CON = " + Quote(tied)},
       "conciliação " + tied + " da"},
      {{"UPDATE RECEBER_001 SET VALOR_PAGO = VALOR_PAGO - 0.01 WHERE NUMERO = " + Quote(paid)},
       "título a receber " + paid + ": pago"},
      {{"UPDATE RECEBER_001 SET DESCONTO = 0.01 WHERE NUMERO = " + Quote(paid)},
       "título a receber " + paid + ": baixado além do valor, saldo -0,01."},
      {{Insert(Receberb{.numero = "X", .dt_pagto = day})},
       "baixa do lançamento 000001: o título a receber X não existe."},
      {{"UPDATE RECEBERB_001 SET LANCAMENTO = 'X' WHERE NUMERO = " + Quote(paid)},
       "baixa do título a receber " + paid + ": o lançamento X não existe."},
      {{"UPDATE RECEBER_001 SET CLASSE = '1' WHERE NUMERO = " + Quote(paid)},
       "título a receber " + paid + ": a classe \"1\" é do tipo título."},
      {{"UPDATE PAGTO_001 SET VAL_PAG = VAL_PAG - 0.01 WHERE NUM_AP = " + Quote(bill)},
       "título a pagar " + bill + ": pago"},
      {{"UPDATE PAGTO_001 SET VAL_DEV = 1 WHERE NUM_AP = " + Quote(bill)},
       "título a pagar " + bill + ": baixado além do valor, saldo -1,00."},
      {{"INSERT INTO PAGTO1_001 (NUM_AP, LANCAMENTO, DT_LAN) VALUES ('X', '000001', '11/20/2026')"},
       "baixa do lançamento 000001: o título a pagar X não existe."},
      {{"UPDATE PAGTO1_001 SET LANCAMENTO = 'X' WHERE NUM_AP = " + Quote(bill)},
       "baixa do título a pagar " + bill + ": o lançamento X não existe."},
      {{"UPDATE PAGTO_001 SET NUM_OS = '2' WHERE NUM_AP = " + Quote(bill)},
       "título a pagar " + bill + ": a classe \"2\" é do tipo título."},
      {{Insert(Cheque{.chave = "X", .numero = "000777", .emissao = day, .vencimento = day, .status = "D"})},
       "cheque 000777: o lançamento X não existe."},
      {{"UPDATE CHEQUE_PRE_001 SET STATUS = 'C' WHERE CHAVE = " + Quote(cleared)},
       "cancelado, mas o lançamento " + cleared + " continua."},
      {{"UPDATE CONTACOR_001 SET PENDENTE = 'S' WHERE LANCAMENTO = " + Quote(cleared)},
       "baixado, mas o lançamento " + cleared + " está pendente."},
      {{"UPDATE CHEQUE_PRE_001 SET DT_BAIXA = NULL WHERE CHAVE = " + Quote(cleared)},
       "lançamento " + cleared + ": baixado sem data de baixa."},
      {{"UPDATE CHEQUE_PRE_001 SET VALOR = VALOR + 1 WHERE CHAVE = " + Quote(cleared)},
       "o lançamento " + cleared + " é de"},
      {{Insert(Partida{.lancamento = "X", .conta_c = "0", .conta_d = "0", .data = day})},
       "contabilização X: não há lançamento nem conciliação com este número."},
      {{movement({.lancamento = "9999999"})}, "numeração de CONTACOR.LANCAMENTO: está em "},
  };
  for (const auto& c : cases) {
    for (const std::string& sql : c.plant) EXPECT_GT(Db().Execute(sql), 0) << sql;
    const std::vector<std::string> lines = CheckData(Db());
    bool found = false;
    for (const std::string& line : lines)
      found = found || (line.starts_with("Empresa _001, ") && line.find(c.found) != std::string::npos);
    EXPECT_TRUE(found) << c.found << "\n" << (lines.empty() ? "nothing" : lines[0]);
    // One fault can show on more than one side, but never far from where it is.
    EXPECT_LE(lines.size(), 3u) << lines.front();
    Db().Rollback();
  }
  EXPECT_EQ(CheckData(Db()), std::vector<std::string>{});
}

// Corruptions of single rows, which don't touch one another: all at once.
TEST_F(Demo, CheckFindsEveryCorruption) {
  // Movements by hand without accounting, each for one corruption.
  const auto hands = Db().Rows(
      "SELECT FIRST 12 LANCAMENTO, CONTA FROM CONTACOR_001 M WHERE TIPO = 'L' AND PENDENTE = 'N' AND "
      "LANC_CON = '' AND NOT EXISTS (SELECT 1 FROM CONTABIL_001 A WHERE A.LANCAMENTO = M.LANCAMENTO) AND "
      "HISTORICO <> '018' ORDER BY 1");
  std::size_t next = 0;
  std::vector<std::pair<std::string, std::string>> cases;
  const auto hand = [&](const std::string& change, const std::string& found) {
    const std::string number = hands[next++][0].AsString();
    cases.emplace_back("UPDATE CONTACOR_001 SET " + change + " WHERE LANCAMENTO = " + Quote(number),
                       "lançamento " + number + ": " + found);
  };
  hand("HISTORICO = '999'", "o histórico \"999\" não existe.");
  hand("PENDENTE = 'X'", "situação \"X\" desconhecida.");
  hand("OPERACAO = NULL", "sem operação.");
  hand("DT_LAN = NULL", "sem data de lançamento.");
  hand("DT_CONT = '12/30/1899'", "sem data de contabilização.");
  hand("VALOR = -5", "valor -5,00 negativo.");
  hand("VALOR = 1000000000000", "valor 1.000.000.000.000,00 além de 999.999.999.999,99.");
  const std::string on_two = hands[next++][0].AsString(), shared = hands[next++][0].AsString();
  cases.emplace_back(
      "INSERT INTO CONTACOR_001 (LANCAMENTO, DOCTO, CONTA, VALOR, OPERACAO, GRUPO, PENDENTE, TIPO, DT_LAN, "
      "DT_CONT, DT_VENCTO) SELECT LANCAMENTO, 'X', (SELECT MAX(C.CONTA) FROM CADCONTA_001 C WHERE C.CONTA <> "
      "M.CONTA), VALOR, OPERACAO, GRUPO, 'N', TIPO, DT_LAN, DT_CONT, DT_VENCTO FROM CONTACOR_001 M WHERE "
      "LANCAMENTO = " +
          Quote(on_two),
      "lançamento " + on_two + ": está na conta");
  const std::string cleared = Text(
      "SELECT MIN(CHAVE) FROM CHEQUE_PRE_001 WHERE STATUS = 'B' AND TIPO = 'P' AND EXISTS (SELECT 1 FROM "
      "CONTACOR_001 M WHERE M.LANCAMENTO = CHAVE AND M.LANC_CON > '')");
  cases.emplace_back("UPDATE CONTACOR_001 SET LANC_CON = " + Quote(shared) +
                         " WHERE LANCAMENTO = " + Quote(hands[next++][0].AsString()),
                     "número " + shared + ": é de um lançamento");
  cases.emplace_back(
      "UPDATE CONTACOR_001 SET LANC_CON = '7' WHERE LANCAMENTO IN (SELECT FIRST 2 MAX(LANCAMENTO) FROM "
      "CONTACOR_001 WHERE PENDENTE = 'C' GROUP BY CONTA)",
      "número 7: é de compensações ou conciliações diferentes");
  const std::string file = Text("SELECT MIN(ARQUIVO) FROM EXTRATO_001"),
                    other = Text("SELECT MAX(ARQUIVO) FROM EXTRATO_001");
  const auto import = [](const std::string& from, const std::string& to) {
    return "INSERT INTO EXTRATO_001 SELECT 'X' || LANCTO, BANCO, CONTA, DOCTO, DT_CONT, DT_ARQ, VALOR, "
           "OPERACAO, OBSERVACAO, " +
           Quote(to) + ", CHAVE, 'N', '' FROM EXTRATO_001 WHERE ARQUIVO = " + Quote(from);
  };
  cases.emplace_back(import(file, file), "arquivo \"" + file + "\" da conta");
  cases.emplace_back(import(other, "outro.ofx"), "são o mesmo extrato com dois nomes.");
  cases.emplace_back(
      "UPDATE EXTRATO_001 SET CONTA = NULL WHERE LANCTO = (SELECT MAX(LANCTO) FROM EXTRATO_001 WHERE LANCTO "
      "< 'X' AND CONCILIADO = 'N' AND ARQUIVO <> " +
          Quote(other) + ")",
      "a conta \"\" não existe.");
  const auto entry = [&](const std::string& which) {
    return Text("SELECT FIRST 1 SKIP 3 LANCAMENTO FROM CONTABIL_001 A WHERE " + which + " ORDER BY 1");
  };
  const std::string
      by_hand = entry(
          "ORIGEM = 'CC' AND EXISTS (SELECT 1 FROM CENTRO_RATEIO_001 R WHERE R.LANCAMENTO = A.LANCAMENTO)"),
      clearing = entry("CODIGO = '000' AND ORIGEM = 'CC'"), bills = entry("ORIGEM = 'PP'"),
      moved = entry("CODIGO = '000-00'");
  const std::string change = "UPDATE CONTABIL_001 SET ";
  cases.emplace_back(change + "VALOR = VALOR + 0.02 WHERE LANCAMENTO = " + Quote(moved),
                     "contabilização " + moved + ": soma");
  cases.emplace_back(change + "VALOR = VALOR - 1 WHERE LANCAMENTO = " + Quote(clearing),
                     "o lançamento compensado é de");
  cases.emplace_back(change + "VALOR = VALOR - 0.01 WHERE LANCAMENTO = " + Quote(bills),
                     "mas as baixas do lançamento");
  cases.emplace_back(change + "CONTA_D = '9.9' WHERE LANCAMENTO = " + Quote(moved),
                     "a conta de débito \"9.9\" não existe.");
  const std::string share =
      "INSERT INTO CENTRO_RATEIO_001 (LANCAMENTO, ORDEM, NUMERO, TIPO, PERC_RAT, VALOR_RAT) VALUES ";
  cases.emplace_back(share + "('X', 1, 'X', 'CC', 100, 1)", "rateio X: não há contabilização");
  cases.emplace_back(share + "('', 1, " + Quote(shared) + ", 'CC', 100, 0)",
                     "rateio do lançamento " + shared);
  cases.emplace_back(
      "UPDATE CENTRO_RATEIO_001 SET VALOR_RAT = VALOR_RAT + 1 WHERE LANCAMENTO = " + Quote(by_hand),
      "rateio " + by_hand + ", partida 1: soma");
  cases.emplace_back("UPDATE PAGTO_001 SET SITUACAO = NULL WHERE NUM_AP = '000001'",
                     "título a pagar 000001: sem situação.");
  cases.emplace_back(
      "UPDATE CHEQUE_PRE_001 SET STATUS = 'P', DT_BAIXA = NULL WHERE CHAVE = " + Quote(cleared),
      "pendente, mas o lançamento " + cleared + " está baixado.");
  cases.emplace_back(
      "UPDATE CHEQUE_PRE_001 SET STATUS = 'X' WHERE CHAVE = (SELECT MAX(CHAVE) FROM CHEQUE_PRE_001 WHERE "
      "STATUS = 'C')",
      "situação \"X\" desconhecida.");
  cases.emplace_back(
      "INSERT INTO CHEQUE_PRE_001 SELECT * FROM CHEQUE_PRE_001 WHERE CHAVE = (SELECT MAX(CHAVE) FROM "
      "CHEQUE_PRE_001 WHERE STATUS = 'B')",
      "gravado 2 vezes.");
  cases.emplace_back(
      "INSERT INTO USUARIO (LOGIN, LOGIN_BUSCA) SELECT 'Ana', 'ana' FROM RDB$DATABASE WHERE NEXT VALUE FOR "
      "SQ_AUDITORIA_ID > 0",
      "Auditoria: está vazia");
  for (const auto& [sql, found] : cases) EXPECT_GT(Db().Execute(sql), 0) << sql;
  const std::vector<std::string> lines = CheckData(Db());
  for (const auto& [sql, found] : cases)
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [&, &text = found](const std::string& told) {
      return told.find(text) != std::string::npos;
    })) << found;
  EXPECT_LE(lines.size(), cases.size() + 8) << Join(lines, "\n");
}

TEST_F(Demo, CheckSparesWhatOnlyLooksWrong) {
  // A cheque handed over by another company; a run whose chargebacks leave no movement; a number that isn't
  // one.
  const std::string cheque = Text(
      "SELECT FIRST 1 CHAVE FROM CHEQUE_PRE_001 WHERE STATUS = 'P' AND TIPO = 'R' AND EXISTS (SELECT 1 FROM "
      "CONTACOR_001 M WHERE M.LANCAMENTO = CHAVE)");
  Db().Execute("INSERT INTO CHEQUE_PRE_002 SELECT * FROM CHEQUE_PRE_001 WHERE CHAVE = " + Quote(cheque));
  const std::string order =
      Text("SELECT FIRST 1 NUMERO FROM RECEBER_001 WHERE PEDIDO > '' AND VALOR_PAGO = 0");
  Db().Execute(Insert(
      Receberb{.numero = order, .lancamento = "0000X", .dt_pagto = kDay, .valor_pago = 0, .juros = 12}));
  Db().Execute(
      Insert(Partida{.lancamento = "0000X", .conta_c = "0", .conta_d = "0", .valor = 12, .data = kDay}));
  Movimento other{.lancamento = "A-1", .dt_lan = kDay, .dt_cont = kDay, .dt_vencto = kDay};
  Db().Execute(Insert(other));
  // A quick entry that took an older one's place on another account; a cheque presented again, whose return
  // stands under its number; a cheque issued on a movement that isn't pending.
  other.lancamento = "A-2";
  other.pendente = "S";
  for (const auto& [conta, operacao] : {std::pair(kConta, "+"), {kConta, "-"}, {"CAIXA", "+"}}) {
    other.conta = conta;
    other.operacao = operacao;
    Db().Execute(Insert(other));
  }
  Db().Execute(
      "UPDATE CHEQUE_PRE_001 C SET STATUS = 'P' WHERE STATUS = 'D' AND EXISTS (SELECT 1 FROM CONTACOR_001 M "
      "WHERE M.DOCTO = C.NUMERO AND M.HISTORICO = '018')");
  Db().Execute(
      "UPDATE CONTACOR_001 SET PENDENTE = 'N' WHERE LANCAMENTO = (SELECT MIN(CHAVE) FROM CHEQUE_PRE_001 "
      "WHERE STATUS = 'P' AND TIPO = 'P')");
  EXPECT_EQ(CheckData(Db()), std::vector<std::string>{});
}

TEST_F(Demo, CheckKeepsAFloodShort) {
  Db().Execute("UPDATE CONTACOR_001 SET CONTA = '999'");
  const std::vector<std::string> lines = CheckData(Db());
  std::size_t accounts = 0;
  for (const std::string& line : lines)
    accounts += line.find("a conta \"999\" não existe") != std::string::npos;
  EXPECT_EQ(accounts, 20u);
  EXPECT_EQ(lines.at(20), "Empresa _001, e mais ocorrências como a anterior.");
}

}  // namespace
}  // namespace orv::test
