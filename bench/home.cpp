// The home and the register of an account of 100,000 movements in a house of a million, beside the bare fetch
// of what they read.
#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "bench/recording.h"
#include "bench/statement_screen.h"
#include "frame/module.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 5;
constexpr double kHomeMs = 300, kPartsMs = 100;
constexpr int64_t kMovements = 100000;

void Home(const std::filesystem::path& house) {
  StatementScreen home(house, "TfmPainel", "_001", {"BtAtualiza", ""});
  StartRecording();
  home.Gather();
  const std::vector<Sent> statements = StopRecording();
  // Only the balances may depend on how much was settled before.
  std::vector<Sent> parts;
  std::ranges::copy_if(statements, std::back_inserter(parts), [](const Sent& sent) {
    return sent.sql.find(" AS VALOR FROM CADCONTA") == std::string::npos;
  });
  const auto db = Attachment::Open(house.string());
  Best all, bare;
  for (int i = 0; i < kRuns; ++i) {
    all.Take(Measure([&] { home.Gather(); }));
    bare.Take(Measure([&] { FetchBare(*db, parts); }));
  }
  Print("the home's figures, by the clock", all.Wall() * 1e3, Bound::AtMost, kHomeMs, "ms",
        std::to_string(statements.size()) + " statements");
  Print("what it reads beside the balances, bare", bare.Wall() * 1e3, Bound::AtMost, kPartsMs, "ms",
        std::to_string(parts.size()) + " statements");
}

void Register(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  const std::string account =
      db->Scalar("SELECT FIRST 1 CONTA FROM CONTACOR_001 GROUP BY CONTA ORDER BY ABS(COUNT(*) - " +
                 std::to_string(kMovements) + ")")
          .AsString();
  StatementScreen screen(house, "TfmRegistroConta", "_001", {"BtConsulta", ""});
  screen.Set("EdtConta", account);
  StartRecording();
  screen.Gather();
  const std::vector<Sent> statements = StopRecording();
  Best bare, all, typed;
  for (int i = 0; i < kRuns; ++i) {
    bare.Take(Measure([&] { FetchBare(*db, statements); }));
    all.Take(Measure([&] { screen.Gather(); }));
    typed.Take(Measure([&] { screen.Set("EdtProcura", "parcela " + std::to_string(i)); }));
    screen.Set("EdtProcura", "");
  }
  const double rows = static_cast<double>(screen.Count("TbMovimentos"));
  Print("bare fetch of an account's " + Number(rows) + " movements", bare.Cpu(), "s");
  Print("its register (1.5 x bare)", all.Cpu(), Bound::AtMost, 1.5 * bare.Cpu(), "s");
  Print("its register searched", typed.Wall() * 1e3, Bound::AtMost, 100, "ms");
}

}  // namespace

int main() {
  try {
    const Module module("orvCC");
    const auto house = House(250);
    Home(house);
    Register(house);
  } catch (const std::exception& e) {
    std::cerr << e.what() << "\n";
    return EXIT_FAILURE;
  }
}
