// A house of a million movements: how long a session, the ledger's screen and a table take to open.
#include <cstdlib>
#include <iostream>
#include <memory>

#include "bench/house.h"
#include "bench/measure.h"
#include "frame/module.h"
#include "toolkit/table.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 5;

// Counts the rows that come through a connection.
class Counting : public TOrvDatabase {
 public:
  explicit Counting(TOrvDatabase& database) : database_(database) {}
  void Fetch(std::string_view sql, RowSink& sink) override {
    struct Counter : RowSink {
      Counter(RowSink& s, int64_t& r) : sink(s), rows(r) {}
      void Columns(const std::vector<Column>& columns) override { sink.Columns(columns); }
      bool Row(std::span<Value> values) override {
        ++rows;
        return sink.Row(values);
      }
      RowSink& sink;
      int64_t& rows;
    } counter(sink, rows);
    database_.Fetch(sql, counter);
  }
  int64_t Execute(std::string_view sql) override { return database_.Execute(sql); }
  void CommitRetaining() override { database_.CommitRetaining(); }
  std::string LocalName(std::string_view table) const override { return std::string(table) + "_001"; }

  int64_t rows = 0;

 private:
  TOrvDatabase& database_;
};

// Rows that the engine has read for this connection.
int64_t EngineReads(Attachment& db) {
  db.CommitRetaining();
  return db
      .Scalar(
          "SELECT R.MON$RECORD_SEQ_READS + R.MON$RECORD_IDX_READS FROM MON$ATTACHMENTS A"
          " JOIN MON$RECORD_STATS R ON R.MON$STAT_ID = A.MON$STAT_ID"
          " WHERE A.MON$ATTACHMENT_ID = CURRENT_CONNECTION")
      .AsInteger();
}

void Sessions(const std::filesystem::path& house) {
  Log log("/dev/null");
  Best start, open, list;
  Seconds first;
  for (int i = 0; i < kRuns; ++i) {
    std::unique_ptr<DoorClient> client;
    const Seconds started = Measure([&] { client = std::make_unique<DoorClient>(Ana(house), log); });
    if (i == 0) {
      first = started;
    } else {
      start.Take(started);
    }
    std::vector<Json> out;
    open.Take(Measure([&] { out = client->Do({{"do", "open"}, {"class", "TfmCC"}}); }));
    if (!(out.front()["on"] == Json("screen"))) throw UserError(out.front().Text());
    list.Take(Measure([&] { out = client->Do({{"do", "click"}, {"control", "btnConsulta"}}); }));
    if (!(out.back()["for"] == Json("lookup"))) throw UserError(out.back().Text());
    client->Do({{"do", "choose"}});
  }
  const auto wall = [](double seconds) { return Number(seconds * 1e3) + " ms by the clock"; };
  Print("a session starts, the process's first", first.cpu * 1e3, Bound::AtMost, 1000, "ms",
        wall(first.wall));
  Print("a session starts, a later one", start.Cpu() * 1e3, Bound::AtMost, 1000, "ms", wall(start.Wall()));
  Print("TfmCC opens", open.Cpu() * 1e3, Bound::AtMost, 100, "ms", wall(open.Wall()));
  Print("its list of a million movements opens", list.Cpu() * 1e3, "ms", wall(list.Wall()));
}

void Tables(const std::filesystem::path& house) {
  const auto db = Attachment::Open(house.string());
  const double movements = static_cast<double>(db->Scalar("SELECT COUNT(*) FROM CONTACOR_001").AsInteger());
  const double nothing = [&] {
    const int64_t before = EngineReads(*db);
    return static_cast<double>(EngineReads(*db) - before);
  }();
  // The shared table of the movements: its key has no index of its own.
  for (const char* order : {"", "DT_LAN"}) {
    Counting counting(*db);
    TOrvTable table(counting, "tbContaCor", "CONTACOR");
    table.SetKey("LANCAMENTO;DOCTO;CONTA;OPERACAO");
    const int64_t before = EngineReads(*db);
    const Seconds opened = Measure([&] {
      table.SetIndexFieldNames(order);
      table.Open();
    });
    const int64_t opened_rows = counting.rows;
    const auto read = static_cast<double>(EngineReads(*db) - before) - nothing;
    std::string text;
    const Seconds shown = Measure([&] {
      table.First();
      table.Prepare(0, 40);
      for (int row = 0; row < 40; ++row) text += table.Cell(row, *table.Fields()[0]).AsString();
    });
    const auto shown_read = static_cast<double>(EngineReads(*db) - before) - read - 2 * nothing;
    const std::string by = *order ? std::string(" by ") + order : " by its key";
    const auto ms = [](const Seconds& seconds) { return Number(seconds.cpu * 1e3) + " ms"; };
    Print("rows read to open a table of " + Number(movements) + by, static_cast<double>(opened_rows),
          Bound::AtMost, 0, "rows", ms(opened) + ", the engine " + Number(read));
    Print("rows read to show its first 40", static_cast<double>(counting.rows - opened_rows), Bound::AtMost,
          1000, "rows", ms(shown) + ", the engine " + Number(shown_read));
  }
}

int Run() {
  const Module module("orvCC");
  const auto house = House(260);
  Sessions(house);
  Tables(house);
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
