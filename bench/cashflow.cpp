// The cash-flow statement, the cash-flow analysis and the cash flow by bank of 90 days and the forecast of 12
// months in a house of a million movements, 200,000 titles and 50,000 orders, beside the bare fetch of what
// they read; memory; how they grow; and what the user of the analysis waits for.
#include <cstdlib>
#include <iostream>

#include "bench/recording.h"
#include "bench/statement_screen.h"
#include "frame/module.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 4;
constexpr int kOrders = 50000;
constexpr int kDays = 90;
// The second company has so many open titles from a day on, the same number each day; of seven one is a
// budget item.
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
      "INSERT INTO PEDIDO_001 (NUMERO, CODCLI, DT_FATURA, PER_DESC, PGTO, SIT_DUP) VALUES (:N, :C, " +
      day +
      ", MOD(:I, 3), '030060090', '0'); "
      "INSERT INTO PED_ITEN_001 (NUMERO, PRECO, QTDE) VALUES (:N, 19.9 + MOD(:I, 50), 3); "
      "INSERT INTO PED_ITEN_001 (NUMERO, PRECO, QTDE) VALUES (:N, 7.35, 1 + MOD(:I, 9)); "
      "IF (MOD(I, 10) = 0) THEN BEGIN "
      "INSERT INTO COMPRA_001 (NUMERO, CODFOR, DT_ENTREGA, CONDICAO, CLASSE, DOCTO, LIBERADO) VALUES (:N, "
      ":C, " +
      day +
      ", '028056', '2101', :N, 'S'); "
      "INSERT INTO CO_ITEN_001 (NUMERO, PRECO, QTDE, QTDE_B, DT_ENTREGA, SITUACAO) VALUES (:N, 12.5, 40, "
      "5, " +
      day +
      ", 'A'); END "
      "I = I + 1; END END");
}

void AddTitles(Attachment& db) {
  db.Execute(
      "EXECUTE BLOCK AS DECLARE I INTEGER = 0; BEGIN WHILE (I < " + std::to_string(kTitles) +
      ") DO BEGIN "
      "INSERT INTO RECEBER_002 (NUMERO, CODCLI, DT_EMISSAO, DT_VENCTO, VALOR, VALOR2, VALOR_PAGO, VAL_DEV, "
      "JUROS, DESCONTO, CLASSE, BANCO, SITUACAO, STATUS, OBS) VALUES ('G' || :I, LPAD(CAST(2 + MOD(:I, 40) "
      "AS "
      "VARCHAR(5)), 5, '0'), '" +
      std::string(kToday) + "', DATEADD(:I / " + std::to_string(kTitlesPerDay) + " DAY TO DATE '" +
      kFirstTitles +
      "'), 100 + MOD(:I, 77), 100 + MOD(:I, 77), 0, 0, 0, 0, '1103', '901', '0', IIF(MOD(:I, 7) = 0, 'O', "
      "'N'), 'PARCELA DO PEDIDO ' || "
      ":I); "
      "I = I + 1; END END");
}

// The house with those orders and titles, made once.
std::filesystem::path WithOrders(const std::filesystem::path& house) {
  std::filesystem::path path = house;
  path.replace_filename(house.stem().string() + "-flow.fdb");
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

// A screen of the cash flow: what is ticked in it, its rows, how many times the bare fetch it may take, and
// how many seconds by the clock.
struct Flow {
  const char *screen, *name;
  std::vector<const char*> ticked, sets;
  double times;
  Buttons buttons = {};
  double seconds = 3;
};
const Flow kStatement{"TfmRelFluxo",
                      "cash-flow statement",
                      {"CbCheque", "CbVenCom", "CBCond", "CbOrcReceber"},
                      {"TbRelatorio", "TbSaldo"},
                      2};
const Flow kAnalysis{"TfmRelAnaliseFluxo",
                     "cash-flow analysis",
                     {"CBCond", "CbPagtoAtraso", "CbRecAtraso", "CbDiasUteis"},
                     {"TbDetalha", "TbRelatorio"},
                     1.5,
                     {},
                     4};
const Flow kByBank{"TfmRelFluxoBanco",
                   "cash flow by bank",
                   {},
                   {"TbSaldo", "QryPagar", "QryReceber"},
                   1.5,
                   {"btnConfirma", "BtnImprime"},
                   8};

void NinetyDays(const std::filesystem::path& house, const Flow& flow) {
  const Date today = Date::ParseNeutral(kToday);
  StatementScreen statement(house, flow.screen, "_001", flow.buttons);
  // What the program and the engine keep for the next ones is taken by a short one.
  for (const char* option : flow.ticked) statement.Set(option, "true");
  const Date past(2001, 1, 1);
  statement.Period(past, past);
  statement.Gather();
  statement.Period(today, today.AddDays(kDays - 1));
  PrintMemory(statement, flow.sets);

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
  const auto rows = static_cast<double>(statement.Count(flow.sets.front()));
  const std::string name = flow.name;
  Print("bare fetch of a " + name + "'s rows", bare.Cpu(), "s",
        Number(static_cast<double>(read)) + " rows of " + std::to_string(statements.size()) +
            " statements, " + Number(bare.Wall()) + " s by the clock");
  Print("the " + name + " of 90 days (" + Number(flow.times) + " x bare)", gathering.Cpu(), Bound::AtMost,
        flow.times * bare.Cpu(), "s", Number(rows) + " rows");
  Print("the " + name + " of 90 days, by the clock", gathering.Wall(), Bound::AtMost, flow.seconds, "s");
  if (&flow == &kByBank) {
    Print("its report", Measure([&] { statement.Pages(); }).cpu, Bound::AtMost, 3, "s");
  } else {
    PrintPages(statement);
  }
}

void Growth(const std::filesystem::path& house, const Flow& flow) {
  const Date first = Date::ParseNeutral(kFirstTitles);
  StatementScreen statement(house, flow.screen, "_002");
  for (const char* option : flow.ticked) statement.Set(option, "true");
  double each_of_few = 0;
  for (const int wanted : {10'000, 30'000, 100'000, 300'000, kTitles}) {
    statement.Period(first, first.AddDays(wanted / kTitlesPerDay - 1));
    Best best;
    for (int i = 0; i < (wanted > 100'000 ? 1 : 3); ++i) best.Take(Measure([&] { statement.Gather(); }));
    const auto rows = static_cast<double>(statement.Count(flow.sets.front()));
    const double each = best.Cpu() / rows * 1e6;
    const std::string what = "a " + std::string(flow.name) + " of " + Number(rows) + " rows",
                      clock =
                          Number(best.Cpu()) + " s of processors, " + Number(best.Wall()) + " s by the clock";
    if (each_of_few == 0) {
      Print(what, each, "us/row", clock);
      each_of_few = each;
    } else {
      Print(what + " (1.3 x the first)", each, Bound::AtMost, 1.3 * each_of_few, "us/row", clock);
    }
  }
}

// The later the period begins, the more movements are before it.
void GrowthByBank(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  StatementScreen statement(house, kByBank.screen, "_001", kByBank.buttons);
  double each_of_few = 0;
  for (const char* part : {"0.1", "0.3", "1"}) {
    const Date day = db->Scalar("SELECT DATEADD(CAST((MAX(DT_CONT) - MIN(DT_CONT)) * " + std::string(part) +
                                " AS INTEGER) DAY TO MIN(DT_CONT)) FROM CONTACOR_001")
                         .AsDate();
    statement.Period(day, day);
    Best best;
    for (int i = 0; i < kRuns; ++i) best.Take(Measure([&] { statement.Gather(); }));
    const auto rows = static_cast<double>(statement.Count("TbSaldo"));
    const double each = best.Cpu() / rows * 1e6;
    const std::string what = "a cash flow by bank of " + Number(rows) + " movements";
    if (each_of_few == 0) {
      Print(what, each, "us/row");
      each_of_few = each;
    } else {
      Print(what + " (1.3 x the first)", each, Bound::AtMost, 1.3 * each_of_few, "us/row");
    }
  }
  db->CommitRetaining();
}

// What the user of the analysis waits for: its rows summed anew, an amount typed, a kind hidden.
void Waits(const std::filesystem::path& house) {
  const Date first = Date::ParseNeutral(kFirstTitles);
  StatementScreen analysis(house, kAnalysis.screen, "_002");
  const char* const groups[] = {"month", "week", "day"};
  analysis.Period(first, first.AddDays(100'000 / kTitlesPerDay - 1));
  for (int group = 0; group < 3; ++group) {
    analysis.Set("RgGrupo", std::to_string(group));
    Best best;
    for (int i = 0; i < 3; ++i) {
      // The rows are there when the last statement was read.
      Seconds read;
      WhenFetched([&] { read = Now(); });
      analysis.Gather();
      WhenFetched(nullptr);
      const Seconds now = Now();
      best.Take({now.cpu - read.cpu, now.wall - read.wall});
    }
    Print(Number(static_cast<double>(analysis.Count("TbDetalha"))) + " rows summed by " + groups[group],
          best.Cpu() * 1e3, Bound::AtMost, 150, "ms",
          Number(static_cast<double>(analysis.Count("TbRelatorio"))) + " periods");
  }
  analysis.Period(first, first.AddDays(398));
  analysis.Gather();
  Best typed, hidden;
  for (int i = 0; i < 20; ++i) {
    const std::string amount = std::to_string(100 + i);
    typed.Take(Measure([&] {
      analysis.Do(
          {{"do", "cell"}, {"control", "DBGrid1"}, {"row", 1}, {"column", "Nota_Saida"}, {"value", amount}});
      analysis.Do(
          {{"do", "key"}, {"control", "DBGrid1"}, {"row", 1}, {"column", "Nota_Saida"}, {"key", "Tab"}});
    }));
  }
  hidden.Take(Measure([&] { analysis.Do({{"do", "check"}, {"control", "CbOrcaRec"}, {"value", false}}); }));
  const std::string periods = Number(static_cast<double>(analysis.Count("TbRelatorio"))) + " periods";
  Print("a simulated amount", typed.Wall() * 1e3, Bound::AtMost, 16, "ms", periods);
  Print("a kind hidden", hidden.Wall() * 1e3, Bound::AtMost, 30, "ms", periods);
}

// The forecast reads a base of past titles too, and writes the customers' delays: its second gathering finds
// none that changed.
void Forecast(const std::filesystem::path& kept) {
  const Copy copy(kept, "forecast");
  const std::filesystem::path& house = copy.Path();
  const auto period = [](StatementScreen& forecast, Date first, Date last) {
    forecast.Set("DtIni", first.Brazil());
    forecast.Set("DtFin", last.Brazil());
  };
  {
    StatementScreen forecast(house, "TfmRelPrevFluxo");
    const Date today = Date::ParseNeutral(kToday);
    forecast.Set("RgTipo", "2");
    period(forecast, today, today.AddMonths(12));
    forecast.Gather();
    StartRecording();
    forecast.Gather();
    const std::vector<Sent> statements = StopRecording();
    const auto db = Attachment::Open(house.string());
    Best bare, gathering;
    int64_t read = 0;
    for (int i = 0; i < kRuns; ++i) {
      bare.Take(Measure([&] { read = FetchBare(*db, statements); }));
      gathering.Take(Measure([&] { forecast.Gather(); }));
    }
    Print(
        "bare fetch of the forecast's rows", bare.Cpu(), "s",
        Number(static_cast<double>(read)) + " rows of " + std::to_string(statements.size()) + " statements");
    Print("the forecast of 12 months (1.5 x bare)", gathering.Cpu(), Bound::AtMost, 1.5 * bare.Cpu(), "s",
          Number(gathering.Wall()) + " s by the clock");
  }
  const Date first = Date::ParseNeutral(kFirstTitles);
  StatementScreen forecast(house, "TfmRelPrevFluxo", "_002");
  forecast.Set("CbEmpresa", "false");
  forecast.Set("RgTipo", "2");
  // Neither what is due before the period nor the base grows with it, nor do the accounts.
  forecast.Set("DtAtualIni", "01/01/2001");
  forecast.Set("DtAtualFim", "01/01/2001");
  for (const char* box : {"CbLimDesc", "CbOrcaRec", "CbDataPrev"}) forecast.Set(box, "false");
  // What the same gathering takes without any title.
  Best none;
  period(forecast, Date(2001, 1, 1), Date(2001, 1, 10));
  for (int i = 0; i < 3; ++i) none.Take(Measure([&] { forecast.Gather(); }));
  double each_of_few = 0;
  for (const int wanted : {10'000, 30'000, 100'000, 300'000, kTitles}) {
    period(forecast, first, first.AddDays(wanted / kTitlesPerDay - 1));
    Best best;
    for (int i = 0; i < (wanted > 100'000 ? 1 : 3); ++i) best.Take(Measure([&] { forecast.Gather(); }));
    const double each = (best.Cpu() - none.Cpu()) / wanted * 1e6;
    const std::string what = "a forecast of " + Number(wanted) + " titles";
    if (each_of_few == 0) {
      Print(what, each, "us/title", Number(best.Cpu()) + " s of processors");
      each_of_few = each;
    } else {
      Print(what + " (1.3 x the first)", each, Bound::AtMost, 1.3 * each_of_few, "us/title",
            Number(best.Cpu()) + " s of processors");
    }
  }
}

int Run() {
  const Module module("orvCC");
  const auto house = WithOrders(House(260));
  NinetyDays(house, kByBank);
  GrowthByBank(house);
  Forecast(house);
  Waits(house);
  for (const Flow& flow : {kStatement, kAnalysis}) {
    Growth(house, flow);
    NinetyDays(house, flow);
  }
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
