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
#include "tests/support/table.h"
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
  // All but what only people put there.
  for (const auto& [table, digest] : digests) {
    const std::string kind = table.substr(0, table.rfind('_'));
    EXPECT_EQ(digest.first > 0, kind != "ANEXO" && kind != "MODELO_LANC" && kind != "REGRA_EXTRATO") << table;
  }
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
  // Rows that stand on their own, but for one thing.
  const std::map<std::string, std::string> rows = {
      {"M", Insert(Movimento{.lancamento = "000000", .dt_lan = day, .dt_cont = day, .dt_vencto = day})},
      {"L", Insert(Extrato{.lancto = "0", .dt_cont = day, .operacao = "C"})},
      {"Q",
       Insert(Cheque{.chave = "X", .numero = "000777", .emissao = day, .vencimento = day, .status = "D"})},
      {"P", Insert(Partida{.lancamento = "X", .conta_c = "0", .conta_d = "0", .data = day})}};
  const std::map<std::string, std::string> keys = {
      {"{tied}", Text("SELECT FIRST 1 LANC_CON FROM EXTRATO_001 WHERE CONCILIADO = 'S'")},
      {"{paid}", Text("SELECT FIRST 1 NUMERO FROM RECEBER_001 WHERE STATUS = 'N' AND VALOR_PAGO = VALOR2")},
      {"{bill}", Text("SELECT FIRST 1 NUM_AP FROM PAGTO_001 WHERE VAL_PAG = VALOR")},
      {"{cleared}", Text("SELECT FIRST 1 CHAVE FROM CHEQUE_PRE_001 WHERE STATUS = 'B' ORDER BY CHAVE")},
      {"{transfer}",
       Text("SELECT FIRST 1 LANCAMENTO FROM CONTACOR_001 WHERE TIPO = 'TR' ORDER BY LANCAMENTO")}};
  for (const auto& c : Table(ORV_FILES "contradictions.txt", 2)) {
    std::string plant = c[0], wanted = c[1];
    for (const auto& [name, key] : keys)
      plant = ReplaceAll(plant, name, key), wanted = ReplaceAll(wanted, name, key);
    for (const std::string& sql : Split(plant, ";"))
      EXPECT_GT(Db().Execute(rows.contains(sql) ? rows.at(sql) : sql), 0) << sql;
    const std::vector<std::string> lines = CheckData(Db());
    bool found = false;
    for (const std::string& line : lines)
      found = found || (line.starts_with("Empresa _001, ") && line.find(wanted) != std::string::npos);
    EXPECT_TRUE(found) << wanted << "\n" << (lines.empty() ? "nothing" : lines[0]);
    // One fault can show on more than one side, but never far from where it is.
    EXPECT_LE(lines.size(), 3u) << lines.front();
    Db().Rollback();
  }
  EXPECT_EQ(CheckData(Db()), std::vector<std::string>{});
}

// Corruptions of single rows, which don't touch one another: all at once.
TEST_F(Demo, CheckFindsEveryCorruption) {
  const auto entry = [&](const std::string& which) {
    return Text("SELECT FIRST 1 SKIP 3 LANCAMENTO FROM CONTABIL_001 A WHERE " + which + " ORDER BY 1");
  };
  std::map<std::string, std::string> keys = {
      {"{cleared}", Text("SELECT MIN(CHAVE) FROM CHEQUE_PRE_001 WHERE STATUS = 'B' AND TIPO = 'P' AND EXISTS "
                         "(SELECT 1 FROM CONTACOR_001 M WHERE M.LANCAMENTO = CHAVE AND M.LANC_CON > '')")},
      {"{file}", Text("SELECT MIN(ARQUIVO) FROM EXTRATO_001")},
      {"{other}", Text("SELECT MAX(ARQUIVO) FROM EXTRATO_001")},
      {"{by_hand}", entry("ORIGEM = 'CC' AND EXISTS (SELECT 1 FROM CENTRO_RATEIO_001 R WHERE R.LANCAMENTO = "
                          "A.LANCAMENTO)")},
      {"{clearing}", entry("CODIGO = '000' AND ORIGEM = 'CC'")},
      {"{bills}", entry("ORIGEM = 'PP'")},
      {"{moved}", entry("CODIGO = '000-00'")}};
  // Movements by hand without accounting, each for one corruption.
  for (const auto& row : Db().Rows(
           "SELECT FIRST 10 LANCAMENTO FROM CONTACOR_001 M WHERE TIPO = 'L' AND PENDENTE = 'N' AND LANC_CON "
           "= "
           "'' AND NOT EXISTS (SELECT 1 FROM CONTABIL_001 A WHERE A.LANCAMENTO = M.LANCAMENTO) AND HISTORICO "
           "<> '018' ORDER BY 1"))
    keys["{" + std::string(1, static_cast<char>('a' + keys.size() - 7)) + "}"] = row[0].AsString();
  auto cases = Table(ORV_FILES "corruptions.txt", 2);
  for (auto& c : cases) {
    for (const auto& [name, key] : keys)
      for (std::string& text : c) text = ReplaceAll(text, name, key);
    EXPECT_GT(Db().Execute(c[0]), 0) << c[0];
  }
  const std::vector<std::string> lines = CheckData(Db());
  for (const auto& c : cases)
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [&](const std::string& told) {
      return told.find(c[1]) != std::string::npos;
    })) << c[1];
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
