// The workbench with 20,000 movements and 20,000 lines: loaded, ticked, proposed, tied.
#include <cstdlib>
#include <iostream>
#include <random>

#include "bench/house.h"
#include "bench/measure.h"
#include "desk/session/door_client.h"
#include "frame/module.h"
#include "reconciliation/suggest.h"
#include "toolkit/database.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 5;
constexpr int kMany = 20000;
constexpr const char* kConta = "BENCH-1";

std::string Ms(const Seconds& seconds) { return Number(seconds.wall * 1e3) + " ms by the clock"; }

class Workbench {
 public:
  explicit Workbench(const std::filesystem::path& house) : log_("/dev/null"), client_(Ana(house), log_) {
    Do({{"do", "open"}, {"class", "TFmConcilia"}});
    Do({{"do", "set"}, {"control", "EdtConta"}, {"value", kConta}});
    Do({{"do", "set"}, {"control", "DtFinal"}, {"value", "31/12/2027"}});
    Do({{"do", "set"}, {"control", "DtInicio"}, {"value", "01/01/2000"}});
  }
  std::vector<Json> Do(Json in) {
    auto out = client_.Do(std::move(in));
    for (const Json& one : out) {
      if (one["on"] == Json("error") || one["on"] == Json("message")) throw UserError(one["text"].String());
    }
    return out;
  }
  void Click(const char* button) { Do({{"do", "click"}, {"control", button}}); }
  void Tick(const char* grid, const char* column, int row, const char* value) {
    Do({{"do", "cell"}, {"control", grid}, {"row", row}, {"column", column}, {"value", value}});
  }
  int64_t Count(const char* set) {
    for (const Json& out : Do({{"do", "read"}, {"control", set}, {"from", 0}, {"count", 1}})) {
      if (out["on"] == Json("state")) return out["screens"].Items().back()["sets"][set]["count"].Integer();
    }
    return -1;
  }

 private:
  Log log_;
  DoorClient client_;
};

// An account with as many open movements and lines; most amounts agree, some in sum, on days near by.
void Fill(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  db->Execute("INSERT INTO CADCONTA_001 (CONTA, BANCO, DESCRICAO) VALUES ('" + std::string(kConta) +
              "', '901', 'MEDIDA')");
  std::mt19937 random(11);
  const auto draw = [&](unsigned below) { return random() % below; };
  std::string block;
  const auto run = [&](bool last) {
    if (block.size() < 40000 && !last) return;
    db->Execute("EXECUTE BLOCK AS BEGIN\n" + block + "END");
    block.clear();
  };
  int line = 0;
  const auto statement_line = [&](std::string_view docto, int64_t cents, unsigned day, char side) {
    if (++line > kMany) return;
    block +=
        "INSERT INTO EXTRATO_001 (LANCTO, BANCO, CONTA, DOCTO, DT_CONT, VALOR, OPERACAO, OBSERVACAO, "
        "CONCILIADO, LANC_CON) VALUES ('Y" +
        std::to_string(line) + "', '901', '" + kConta + "', '" + std::string(docto) + "', DATEADD(DAY, " +
        std::to_string(day) + ", DATE '2026-01-01'), " + Currency::FromCents(cents).Neutral() + ", '" +
        (side == '+' ? "C" : "D") + "', 'LINHA DO EXTRATO', 'N', '');\n";
  };
  for (int i = 1; i <= kMany; ++i) {
    const unsigned day = draw(300);
    const int64_t cents = 100 + draw(2000000);
    const char side = draw(2) == 0 ? '+' : '-';
    const std::string docto = std::to_string(100000 + i);
    block +=
        "INSERT INTO CONTACOR_001 (LANCAMENTO, DOCTO, BANCO, CONTA, DT_LAN, DT_CONT, DT_VENCTO, VALOR, "
        "OPERACAO, GRUPO, HISTORICO, OBSERVACAO, TIPO, PENDENTE, LANC_CON) VALUES ('X" +
        std::to_string(i) + "', '" + docto + "', '901', '" + kConta + "', DATE '2026-01-01', DATEADD(DAY, " +
        std::to_string(day) + ", DATE '2026-01-01'), DATE '2026-01-01', " +
        Currency::FromCents(cents).Neutral() + ", '" + side +
        "', '3104', '019', 'PAGAMENTO DE CONSUMO', 'L', 'S', '');\n";
    run(false);
    const unsigned kind = draw(10);
    if (kind < 3) {
      statement_line(docto, cents, day + 1, side);
    } else if (kind < 7) {
      statement_line("", cents, day + draw(4), side);
    } else if (kind < 8) {
      statement_line("", cents / 3, day, side);
      statement_line("", cents - cents / 3, day + 1, side);
    }
    run(false);
  }
  while (line < kMany)
    statement_line("", 100 + draw(2000000), draw(300), draw(2) == 0 ? '+' : '-'), run(false);
  run(true);
  db->CommitRetaining();
}

void Screen(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  const std::string where =
      std::string(" WHERE CONTA = '") + kConta + "' AND DT_CONT BETWEEN '01/01/2000' AND '12/31/2027' AND ";
  const std::string statements[] = {
      "SELECT C.*, S.DESCRICAO FROM CONTACOR_001 C LEFT OUTER JOIN SUBGRUPO_001 S ON C.GRUPO = S.CODIGO" +
          std::string(" WHERE C.CONTA = '") + kConta +
          "' AND C.DT_CONT BETWEEN '01/01/2000' AND '12/31/2027' AND C.PENDENTE = 'S'",
      "SELECT * FROM EXTRATO_001" + where + "CONCILIADO = 'N'"};
  const auto fetch = [&] {
    Nothing nothing;
    for (const std::string& sql : statements) db->Fetch(sql, nothing);
  };
  Workbench bench(house);
  Best bare, load, tick, propose;
  for (int i = 0; i < kRuns; ++i) {
    bare.Take(Measure(fetch));
    load.Take(Measure([&] { bench.Click("BitBtn1"); }));
    if (bench.Count("TbMov") != kMany || bench.Count("TbArq") != kMany) throw UserError("Rows are missing.");
    tick.Take(Measure([&] { bench.Tick("OrvDBGrid1", "Conciliar", 10000, "true"); }));
    bench.Tick("OrvDBGrid1", "Conciliar", 10000, "false");
    propose.Take(Measure([&] { bench.Click("BtSugerir"); }));
  }
  Print("20,000 movements and 20,000 lines, fetched", bare.Cpu(), "s", Ms({bare.Cpu(), bare.Wall()}));
  Print("the workbench loaded with them (2 x)", load.Cpu(), Bound::AtMost, 2 * bare.Cpu(), "s",
        Ms({load.Cpu(), load.Wall()}));
  Print("a tick among them", tick.Wall() * 1e3, Bound::AtMost, 10, "ms");
  Print("a proposal over all of them", propose.Wall(), Bound::AtMost, 2, "s",
        std::to_string(bench.Count("TbSugestao")) + " rows");

  // One against one: what it takes beside the statements that it sends.
  Best bare_one, one;
  for (int i = 0; i < kRuns; ++i) {
    bench.Click("BitBtn1");
    const std::string n = std::to_string(i + 1);
    db->Execute("UPDATE CONTACOR_001 SET VALOR = 77 WHERE LANCAMENTO = 'X" + n + "'");
    db->Execute(
        "UPDATE EXTRATO_001 SET VALOR = 77, OPERACAO = (SELECT CASE OPERACAO WHEN '+' THEN 'C' ELSE "
        "'D' END FROM CONTACOR_001 WHERE LANCAMENTO = 'X" +
        n + "') WHERE LANCTO = 'Y" + n + "'");
    db->CommitRetaining();
    bench.Click("BitBtn1");
    const auto place = [&](const char* set, const std::string& number) {
      const auto out = bench.Do({{"do", "read"}, {"control", set}});
      const auto& rows = out.front()["screens"].Items().back()["sets"][set]["rows"].Items();
      for (std::size_t r = 0; r < rows.size(); ++r) {
        if (rows[r].Items()[2] == Json(number)) return static_cast<int>(r);
      }
      throw UserError("The row isn't there.");
    };
    bench.Tick("OrvDBGrid1", "Conciliar", place("TbMov", "X" + n), "true");
    bench.Tick("OrvDBGrid2", "Concilia", place("TbArq", "Y" + n), "true");
    one.Take(Measure([&] { bench.Click("BitBtn4"); }));
    bare_one.Take(Measure([&] {
      const std::string lancto = "LANCAMENTO = 'X" + n + "' AND DOCTO = '" + std::to_string(100001 + i) +
                                 "' AND CONTA = '" + kConta + "'";
      for (int twice = 0; twice < 2; ++twice)
        db->Execute("UPDATE CONTACOR_001 SET OBSERVACAO = 'B' WHERE " + lancto);
      db->Rows("SELECT CHAVE, NUMERO FROM CHEQUE_PRE_001 WHERE CHAVE IN ('X" + n + "')");
      db->Execute("UPDATE EXTRATO_001 SET OBSERVACAO = 'B' WHERE LANCTO = 'Y" + n + "'");
      db->CommitRetaining();
      fetch();
    }));
    // As it was, for the next one.
    db->Execute("UPDATE CONTACOR_001 SET PENDENTE = 'S', LANC_CON = '' WHERE LANCAMENTO = 'X" + n + "'");
    db->Execute("UPDATE EXTRATO_001 SET CONCILIADO = 'N', LANC_CON = '' WHERE LANCTO = 'Y" + n + "'");
    db->CommitRetaining();
  }
  Print("the statements of one against one, and the load", bare_one.Wall() * 1e3, "ms");
  Print("one against one tied (20 ms more)", one.Wall() * 1e3, Bound::AtMost, bare_one.Wall() * 1e3 + 20,
        "ms");

  bench.Click("BitBtn1");
  bench.Click("BtSugerir");
  const int64_t proposed = bench.Count("TbSugestao");
  const Seconds all = Measure([&] { bench.Click("BitBtn4"); });
  if (bench.Count("TbMov") == kMany) throw UserError("Nothing was tied.");
  Print("all that was proposed tied at once", all.wall, "s", std::to_string(proposed) + " rows");
}

// The function alone, where all amounts differ and few add up: nothing is found by its amount.
void Worst() {
  std::mt19937 random(5);
  std::vector<SuggestItem> movements, lines;
  const Date first(2026, 11, 1);
  for (int i = 0; i < kMany; ++i) {
    movements.push_back({'D', Currency::FromCents(2'000'001 + 2 * i), {}, first.AddDays(random() % 30)});
    lines.push_back(
        {'D', Currency::FromCents(2 * (random() % 1'000'000) + 2), {}, first.AddDays(random() % 30)});
  }
  std::size_t found = 0;
  const Seconds worst = Measure([&] { found = Suggest(movements, lines, 5).size(); });
  Print("a proposal that looks for sums only", worst.wall, Bound::AtMost, 2, "s", std::to_string(found));
}

int Run() {
  const Module module("orvCC");
  const Copy house(House(1), "concilia.fdb");
  Fill(house.Path());
  Screen(house.Path());
  Worst();
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
