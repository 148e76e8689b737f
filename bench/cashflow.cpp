// The cash-flow statement of 90 days in a house of a million movements, 200,000 titles and 50,000 orders,
// beside the bare fetch of what it reads; memory; and how it grows.
#include <cstdlib>
#include <iostream>

#include "bench/recording.h"
#include "bench/statement_screen.h"
#include "frame/module.h"
#include "host/data/statement.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 4;
constexpr int kOrders = 50000;
constexpr int kDays = 90;
// The second company has so many open titles from a day on, the same number each day.
constexpr int kTitles = 1'000'000;
constexpr int kTitlesPerDay = 1000;
constexpr const char* kFirstTitles = "2030-01-01";

// Orders that wait for their invoice and a tenth as many purchases that wait for their goods, around today.
void AddOrders(Attachment& db) {
  const int64_t more = kOrders - db.Scalar("SELECT COUNT(*) FROM PEDIDO_001").AsInteger();
  const std::string day = "DATEADD(MOD(:I, 200) - 60 DAY TO DATE '" + std::string(kToday) + "')";
  db.Execute(
      "EXECUTE BLOCK AS DECLARE I INTEGER = 0; DECLARE N VARCHAR(8); DECLARE C VARCHAR(5); BEGIN "
      "WHILE (I < " +
      std::to_string(more) +
      ") DO BEGIN "
      "N = 'X' || LPAD(CAST(I AS VARCHAR(5)), 5, '0'); C = LPAD(CAST(2 + MOD(I, 40) AS VARCHAR(5)), 5, "
      "'0'); "
      "INSERT INTO PEDIDO_001 (NUMERO, CODCLI, DT_FATURA, PER_DESC, PGTO) VALUES (:N, :C, " +
      day +
      ", MOD(:I, 3), '030060090'); "
      "INSERT INTO PED_ITEN_001 (NUMERO, PRECO, QTDE) VALUES (:N, 19.9 + MOD(:I, 50), 3); "
      "INSERT INTO PED_ITEN_001 (NUMERO, PRECO, QTDE) VALUES (:N, 7.35, 1 + MOD(:I, 9)); "
      "IF (MOD(I, 10) = 0) THEN BEGIN "
      "INSERT INTO COMPRA_001 (NUMERO, CODFOR, DT_ENTREGA, CONDICAO) VALUES (:N, :C, " +
      day +
      ", '028056'); "
      "INSERT INTO CO_ITEN_001 (NUMERO, PRECO, QTDE, QTDE_B, SITUACAO) VALUES (:N, 12.5, 40, 5, 'A'); END "
      "I = I + 1; END END");
}

void AddTitles(Attachment& db) {
  db.Execute(
      "EXECUTE BLOCK AS DECLARE I INTEGER = 0; BEGIN WHILE (I < " + std::to_string(kTitles) +
      ") DO BEGIN "
      "INSERT INTO RECEBER_002 (NUMERO, CODCLI, DT_EMISSAO, DT_VENCTO, VALOR, VALOR2, VALOR_PAGO, VAL_DEV, "
      "JUROS, DESCONTO, CLASSE, BANCO, STATUS, OBS) VALUES ('G' || :I, LPAD(CAST(2 + MOD(:I, 40) AS "
      "VARCHAR(5)), 5, '0'), '" +
      std::string(kToday) + "', DATEADD(:I / " + std::to_string(kTitlesPerDay) + " DAY TO DATE '" +
      kFirstTitles +
      "'), 100 + MOD(:I, 77), 100 + MOD(:I, 77), 0, 0, 0, 0, '1103', '901', 'N', 'PARCELA DO PEDIDO ' || "
      ":I); "
      "I = I + 1; END END");
}

// The house with those orders and titles, made once.
std::filesystem::path WithOrders(const std::filesystem::path& house) {
  std::filesystem::path path = house;
  path.replace_filename(house.stem().string() + "-cashflow.fdb");
  if (std::filesystem::exists(path)) return path;
  std::cerr << "making " << path.string() << "\n";
  std::filesystem::path begun = path;
  begun.replace_filename("begun-" + path.filename().string());
  std::filesystem::copy_file(house, begun, std::filesystem::copy_options::overwrite_existing);
  {
    const auto db = Attachment::Open(begun.string());
    AddOrders(*db);
    AddTitles(*db);
    db->CommitRetaining();
    for (const char* table : {"PEDIDO_001", "PED_ITEN_001", "COMPRA_001", "CO_ITEN_001", "RECEBER_002"})
      db->Scalar("SELECT COUNT(*) FROM " + std::string(table));
    db->CommitRetaining();
  }
  std::filesystem::rename(begun, path);
  return path;
}

// Runs what was noted again; how many rows came.
int64_t FetchBare(Attachment& db, const std::vector<Sent>& statements) {
  Nothing nothing;
  for (const Sent& sent : statements) {
    if (sent.kind == Sent::Kind::Fetch) Statement(db, sent.sql).Fetch(sent.values, nothing);
  }
  db.CommitRetaining();
  return nothing.rows;
}

void NinetyDays(const std::filesystem::path& house) {
  const Date today = Date::ParseNeutral(kToday);
  StatementScreen statement(house, "TfmRelFluxo");
  // What the program and the engine keep for the next ones is taken by a short one.
  for (const char* option : {"CbCheque", "CbVenCom", "CBCond"}) statement.Set(option, "true");
  statement.Set("dtSaldo", today.Brazil());
  const Date past(2001, 1, 1);
  statement.Period(past, past);
  statement.Gather();
  statement.Period(today, today.AddDays(kDays - 1));
  PrintMemory(statement, {"TbRelatorio", "TbSaldo"});

  StartRecording();
  statement.Gather();
  const std::vector<Sent> statements = StopRecording();
  const auto db = Attachment::Open(house.string());
  Best bare, gathering;
  int64_t read = 0;
  for (int i = 0; i < kRuns; ++i) {
    bare.Take(Measure([&] { read = FetchBare(*db, statements); }));
    gathering.Take(Measure([&] { statement.Gather(); }));
  }
  const auto rows = static_cast<double>(statement.Count("TbRelatorio"));
  Print("bare fetch of a cash-flow statement's rows", bare.Cpu(), "s",
        Number(static_cast<double>(read)) + " rows of " + std::to_string(statements.size()) +
            " statements, " + Number(bare.Wall()) + " s by the clock");
  Print("the statement of 90 days (2 x bare)", gathering.Cpu(), Bound::AtMost, 2 * bare.Cpu(), "s",
        Number(rows) + " rows");
  Print("the statement of 90 days, by the clock", gathering.Wall(), Bound::AtMost, 3, "s");
  PrintPages(statement);
}

void Growth(const std::filesystem::path& house) {
  const Date first = Date::ParseNeutral(kFirstTitles);
  StatementScreen statement(house, "TfmRelFluxo", "_002");
  double each_of_few = 0;
  for (const int wanted : {10'000, 30'000, 100'000, 300'000, kTitles}) {
    statement.Period(first, first.AddDays(wanted / kTitlesPerDay - 1));
    Best best;
    for (int i = 0; i < (wanted > 100'000 ? 1 : 3); ++i) best.Take(Measure([&] { statement.Gather(); }));
    const auto rows = static_cast<double>(statement.Count("TbRelatorio"));
    const double each = best.Cpu() / rows * 1e6;
    const std::string clock =
        Number(best.Cpu()) + " s of processors, " + Number(best.Wall()) + " s by the clock";
    if (each_of_few == 0) {
      Print("a cash flow of " + Number(rows) + " rows", each, "us/row", clock);
      each_of_few = each;
    } else {
      Print("a cash flow of " + Number(rows) + " rows (1.3 x the first)", each, Bound::AtMost,
            1.3 * each_of_few, "us/row", clock);
    }
  }
}

int Run() {
  const Module module("orvCC");
  const auto house = WithOrders(House(260));
  Growth(house);
  NinetyDays(house);
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
