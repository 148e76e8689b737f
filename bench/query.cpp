// A query of a million movements into a working set, beside the bare fetch of the same rows.
#include "toolkit/query.h"

#include <cstdlib>
#include <iostream>

#include "bench/house.h"
#include "bench/measure.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 4;
constexpr const char* kMovements =
    "SELECT FIRST 1000000 LANCAMENTO, DOCTO, BANCO, CONTA, DT_LAN, DT_CONT, DT_VENCTO, VALOR, OPERACAO, "
    "GRUPO, HISTORICO, OBSERVACAO, TIPO, TIPO_DOC, PENDENTE, LANC_CON FROM CONTACOR_001";

int Run() {
  const auto db = Attachment::Open(House(260).string());
  Best bare, query;
  double bytes = 0;
  int64_t rows = 0;
  for (int i = 0; i < kRuns; ++i) {
    Nothing nothing;
    bare.Take(Measure([&] { db->Fetch(kMovements, nothing); }));

    const std::size_t before = HeapBytes();
    TOrvQuery set(*db);
    set.SQL.Add(kMovements);
    query.Take(Measure([&] { set.Open(); }));
    rows = set.RecordCount();
    bytes = static_cast<double>(HeapBytes() - before) / static_cast<double>(rows);
    if (rows != nothing.rows) throw UserError("The rows don't agree.");
  }
  const std::string of = std::to_string(rows) + " rows";
  Print("bare fetch of a million movements", bare.Cpu(), "s", of);
  Print("the same into a working set (1.5 x bare)", query.Cpu(), Bound::AtMost, 1.5 * bare.Cpu(), "s");
  Print("memory of a row of 16 columns", bytes, Bound::AtMost, 400, "B");
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
