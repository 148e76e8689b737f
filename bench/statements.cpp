// A bank's file of a hundred thousand transactions: parsed, shown for review, and confirmed, beside the same
// rows sent by one prepared statement.
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "bench/house.h"
#include "bench/measure.h"
#include "frame/module.h"
#include "host/data/statement.h"
#include "reconciliation/formats/ofx.h"
#include "reconciliation/formats/outside_file.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 3;
constexpr int kLines = 100000;
constexpr const char* kAccount = "33021-5";

// Texts as banks write them, with letters beyond ASCII in Windows-1252.
std::string Memo(int i) { return "PAGAMENTO T\xCDTULO FORNECEDOR " + std::to_string(i * 7919 % kLines); }

std::string Ofx() {
  std::string text = "OFXHEADER:100\r\nENCODING:USASCII\r\nCHARSET:1252\r\n\r\n<OFX>\r\n<BANKID>0903\r\n";
  for (int i = 0; i < kLines; ++i) {
    const std::string number = std::to_string(1000000 + i);
    text += "<STMTTRN>\r\n<TRNTYPE>DEBIT\r\n<DTPOSTED>202611" + std::to_string(10 + i % 20) +
            "120000[-3:BRT]\r\n<TRNAMT>-" + std::to_string(i % 5000 + 1) + ".45\r\n<FITID>20261118" + number +
            "\r\n<CHECKNUM>" + number + "\r\n<REFNUM>" + number + "\r\n<MEMO>" + Memo(i) +
            "\r\n</STMTTRN>\r\n";
  }
  return text + "</OFX>\r\n";
}

void Parse(const std::string& bytes) {
  Best text, parsed;
  std::size_t lines = 0;
  for (int i = 0; i < kRuns * 3; ++i) {
    std::string utf8;
    const Seconds decoded = Measure([&] { utf8 = OutsideText(bytes); });
    OfxSummary summary;
    Currency sum;
    const Seconds read = Measure([&] {
      ReadOfx(utf8, {[&](const StatementLine& line) { sum += line.valor; }, {}}, summary);
    });
    lines = summary.lines;
    text.Take(decoded);
    parsed.Take({decoded.cpu + read.cpu, decoded.wall + read.wall});
  }
  if (lines != kLines) throw UserError("The lines don't agree.");
  const double megabytes = static_cast<double>(bytes.size()) / 1e6;
  Print("an OFX file of 100,000 transactions parsed", megabytes / parsed.Cpu(), Bound::AtLeast, 100, "MB/s",
        Number(megabytes) + " MB, its encoding alone " + Number(megabytes / text.Cpu()) + " MB/s");
}

void Act(DoorClient& client, Json in, const char* end = "idle") {
  const std::vector<Json> out = client.Do(in);
  for (const Json& told : out) {
    if (told["on"] == Json("error")) throw UserError(in.Text() + ": " + told["text"].String());
  }
  const Json& last = out.back();
  if (!(last["on"] == Json(end))) throw UserError(in.Text() + ": " + last.Text());
}

// The rows of the file, bare.
void Bare(Attachment& db, int run) {
  BulkInsert insert(db, "EXTRATO_001",
                    {"BANCO", "VALOR", "DOCTO", "DT_CONT", "DT_ARQ", "CONCILIADO", "ARQUIVO", "LANCTO",
                     "CONTA", "OPERACAO", "CHAVE", "OBSERVACAO"});
  const std::string name = "nu" + std::to_string(run) + ".ofx";
  for (int i = 0; i < kLines; ++i) {
    const std::string number = std::to_string(5000000 + run * kLines + i);
    insert.Add({"903", Currency::FromCents(i % 5000 * 100 + 145), std::to_string(1000000 + i),
                Date(2026, 11, 10 + i % 20), Date(2026, 11, 20), "N", name, number, kAccount, "D", number,
                "PAGAMENTO TÍTULO FORNECEDOR " + std::to_string(i * 7919 % kLines)});
  }
  insert.Finish();
  db.CommitRetaining();
}

void Screen(const std::string& bytes) {
  const Copy copy(House(25), "statements.fdb");
  Log log("/dev/null");
  Best shown, confirmed, bare;
  for (int run = 0; run < kRuns; ++run) {
    const auto path = Ana(copy.Path()).folder / ("extrato" + std::to_string(run) + ".ofx");
    std::ofstream(path, std::ios::binary) << bytes;
    {
      DoorClient client(Ana(copy.Path()), log);
      Act(client, {{"do", "open"}, {"class", "TFmCadExtrato"}});
      Act(client, {{"do", "page"}, {"control", "PageControl1"}, {"page", "TabSheet3"}});
      Act(client, {{"do", "set"}, {"control", "EdtCam"}, {"value", path.filename().string()}});
      Act(client, {{"do", "set"}, {"control", "EdtIConta"}, {"value", kAccount}});
      shown.Take(Measure([&] {
        Act(client, {{"do", "click"}, {"control", "BitBtn6"}}, "waiting");
        Act(client, {{"do", "answer"}, {"value", "ok"}});
        Act(client, {{"do", "read"}, {"control", "TbImporta"}, {"from", 0}, {"count", 100}});
      }));
      confirmed.Take(Measure([&] { Act(client, {{"do", "click"}, {"control", "BitBtn4"}}, "waiting"); }));
      Act(client, {{"do", "answer"}, {"value", "ok"}});
    }
    std::filesystem::remove(path);
    const auto db = Attachment::Open(copy.Path().string());
    bare.Take(Measure([&] { Bare(*db, run); }));
    const std::string stored = "SELECT COUNT(*) FROM EXTRATO_001 WHERE ARQUIVO = '";
    if (db->Scalar(stored + path.filename().string() + "'").AsInteger() != kLines)
      throw UserError("The lines aren't stored.");
  }
  const auto wall = [](double seconds) { return Number(seconds) + " s by the clock"; };
  Print("the same shown for review", shown.Cpu(), Bound::AtMost, 1, "s", wall(shown.Wall()));
  Print("100,000 rows by one prepared statement", bare.Cpu(), "s", wall(bare.Wall()));
  Print("the same confirmed on the screen (2 x bare)", confirmed.Cpu(), Bound::AtMost, 2 * bare.Cpu(), "s",
        wall(confirmed.Wall()));
}

int Run() {
  const Module module("orvCC");
  const std::string bytes = Ofx();
  Parse(bytes);
  Screen(bytes);
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
