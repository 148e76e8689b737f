// A spreadsheet of 100,000 rows of 15 cells, beside a bare walk through the same file, what card acquirers'
// sinks make of it, and files that are made to take more than they look.
#include <expat.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>

#include "bench/measure.h"
#include "host/sheet/sheet_reader.h"
#include "reconciliation/formats/card_sheets.h"
#include "tests/sheet/zip_bytes.h"
#include "toolkit/error.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 5, kRows = 100'000, kColumns = 15;
constexpr double kMegabytes = 64;
constexpr const char* kSheet = "xl/worksheets/sheet1.xml";

struct Count : SheetSink {
  bool Row(const SheetRow& row) override {
    ++rows;
    for (int column = 1; column <= row.Columns(); ++column) bytes += row.Text(column).size();
    return true;
  }
  void TakeBack() noexcept override { rows = 0; }
  int rows = 0;
  std::size_t bytes = 0;
};

test::Parts Book(const std::string& data, const std::string& texts = "") {
  const std::string space = " xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">";
  const std::string types = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
  return {
      {"xl/workbook.xml",
       "<workbook xmlns:r=\"" + types + "\"" + space +
           "<sheets><sheet name=\"Vendas\" sheetId=\"1\" r:id=\"a\"/></sheets></workbook>"},
      {"xl/_rels/workbook.xml.rels", "<Relationships><Relationship Id=\"a\" Type=\"" + types +
                                         "/worksheet\" Target=\"worksheets/sheet1.xml\"/></Relationships>"},
      {"xl/styles.xml", "<styleSheet" + space +
                            "<cellXfs><xf numFmtId=\"0\"/><xf numFmtId=\"22\"/><xf numFmtId=\"4\"/>"
                            "</cellXfs></styleSheet>"},
      {"xl/sharedStrings.xml", "<sst" + space + texts + "</sst>"},
      {kSheet, "<worksheet" + space + "<sheetData>" + data + "</sheetData></worksheet>"}};
}

// Sales as an acquirer lists them: a day, texts of which many are alike, long numbers, amounts.
test::Parts Sales() {
  std::string data, texts;
  for (int i = 0; i < kRows; ++i) {
    const std::string row = std::to_string(i + 1);
    data += "<row r=\"" + row + "\">";
    for (int column = 0; column < kColumns; ++column) {
      data.append("<c r=\"").append(1, static_cast<char>('A' + column)).append(row);
      const int kind = column % 5;
      if (kind == 0) data += "\" s=\"1\"><v>" + std::to_string(45000 + i % 900) + ".604166666664";
      if (kind == 1) data += "\" t=\"s\"><v>" + std::to_string((i * 7919 + column) % kRows);
      if (kind == 2) data += "\" t=\"s\"><v>" + std::to_string(column);
      if (kind == 3) data += "\"><v>" + std::to_string(10'000'000'000'000 + i * 1'234'567LL);
      if (kind == 4) data += "\" s=\"2\"><v>" + std::to_string(i * 31 % 90'000) + ".990000000000002";
      data += "</v></c>";
    }
    data += "</row>";
    texts += "<si><t>VENDA NO CARTÃO " + std::to_string(i * 7919LL % kRows) + "</t></si>";
  }
  return Book(data, texts);
}

// Inflates the parts that count and lets the parser walk through them.
void Bare(const std::string& bytes) {
  zip_source_t* const source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, nullptr);
  zip_t* const zip = zip_open_from_source(source, ZIP_RDONLY, nullptr);
  for (const char* part : {"xl/sharedStrings.xml", kSheet}) {
    zip_file_t* const file = zip_fopen(zip, part, 0);
    XML_Parser parser = XML_ParserCreateNS(nullptr, '|');
    XML_SetElementHandler(
        parser, [](void*, const char*, const char**) {}, [](void*, const char*) {});
    XML_SetCharacterDataHandler(parser, [](void*, const char*, int) {});
    std::vector<char> buffer(65536);
    for (zip_int64_t got = 0; (got = zip_fread(file, buffer.data(), buffer.size())) > 0;)
      XML_Parse(parser, buffer.data(), static_cast<int>(got), 0);
    if (XML_Parse(parser, nullptr, 0, 1) != XML_STATUS_OK) throw UserError("The file isn't well formed.");
    XML_ParserFree(parser);
    zip_fclose(file);
  }
  zip_discard(zip);
}

// What a file takes in a process of its own: seconds, megabytes at its height, and whether it was refused.
struct Taken {
  double seconds = 0, megabytes = 0;
  int refused = 0;
};

struct CardCount : CardSink {
  void Line(const CardLine& line) override { ++lines, bytes += line.comprovante.size(); }
  void TakeBack() noexcept override { lines = 0; }
  int lines = 0;
  std::size_t bytes = 0;
};

// What takes the rows: a plain count, or an acquirer's sink by its name.
std::unique_ptr<SheetSink> Sink(std::string_view name, CardSink& lines) {
  const Date today(2026, 11, 20);
  if (name == "Stone") return std::make_unique<StoneSheet>(lines);
  if (name == "Pagar.me") return std::make_unique<PagarMeSheet>(lines, nullptr, today);
  if (name == "Yapay") return std::make_unique<YapaySheet>(lines, nullptr, today);
  return std::make_unique<Count>();
}

Taken ReadFile(const char* path, std::string_view acquirer) {
  const auto file = InputFile::Open(AT_FDCWD, path, false);
  Taken taken;
  CardCount lines;
  const std::unique_ptr<SheetSink> rows = Sink(acquirer, lines);
  taken.seconds = Measure([&] {
                    try {
                      SheetReader().Read(file.value(), *rows);
                    } catch (const UserError&) {
                      taken.refused = 1;
                    }
                  }).cpu;
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word == "VmHWM:") status >> taken.megabytes, taken.megabytes /= 1024;
  }
  return taken;
}

Taken Apart(const std::string& bytes, const std::string& acquirer = "") {
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() / ("orvcc-sheet-" + std::to_string(getpid()));
  std::ofstream(path, std::ios::binary) << bytes;
  const std::string command = "'" + std::filesystem::read_symlink("/proc/self/exe").string() + "' " +
                              path.string() + " '" + acquirer + "'";
  Taken taken;
  FILE* const pipe = popen(command.c_str(), "r");
  const bool told = pipe != nullptr &&
                    std::fscanf(pipe, "%lf %lf %d", &taken.seconds, &taken.megabytes, &taken.refused) == 3;
  if (pipe != nullptr) pclose(pipe);
  std::filesystem::remove(path);
  if (!told) throw UserError("The file wasn't measured.");
  return taken;
}

void Hostile() {
  std::string distinct, texts, cells = "<row>", wide = cells;
  for (int i = 0; i < 3'000'000; ++i) distinct += "<n" + std::to_string(i) + "/>";
  for (int i = 0; i < 4'000'000; ++i) texts += "<si><t>" + std::to_string(i) + "</t></si>";
  for (int i = 0; i < 1'000'000; ++i) wide += "<c><v>1</v></c>";
  for (int i = 0; i < 9'000'000; ++i) cells += "<c s=\"" + std::to_string(i % 100) + "\"/>";
  const std::string sales = test::ZipBytes(Sales());
  test::Parts doctype = Book("");
  doctype[0].second.insert(0, "<!DOCTYPE w [<!ENTITY a \"aaaaaaaaaa\">]>");
  const std::string bomb = test::ZipBytes(Book(std::string(std::size_t{250} << 20, ' ')));
  const std::pair<const char*, std::string> files[] = {
      {"2 GB told", test::TellSize(test::ZipBytes(Book("")), 4, 0x7FFFFFFF)},
      {"a bomb", bomb},
      {"a bomb that tells 5 MB", test::TellSize(bomb, 4, 5 << 20)},
      {"a million columns", test::ZipBytes(Book(wide + "</row>"))},
      {"cells without end", test::ZipBytes(Book(cells))},
      {"names without end", test::ZipBytes(Book(distinct))},
      {"texts without end", test::ZipBytes(Book("", texts))},
      {"a DOCTYPE", test::ZipBytes(doctype)},
      {"cut in two", sales.substr(0, sales.size() / 2)},
      {"encrypted", test::ZipBytes(Book(""), ZIP_CM_DEFLATE, "senha")},
  };
  for (const auto& [what, bytes] : files) {
    const Taken taken = Apart(bytes);
    if (taken.refused == 0) throw UserError("The file isn't refused.");
    Print(std::string(what) + ", refused", taken.seconds, Bound::AtMost, 1, "s",
          Number(static_cast<double>(bytes.size()) / 1e6) + " MB");
    Print("... at its height", taken.megabytes, Bound::AtMost, kMegabytes, "MB");
  }
}

int Run() {
  const std::string bytes = test::ZipBytes(Sales());
  Best bare, whole;
  for (int run = 0; run < kRuns; ++run) {
    bare.Take(Measure([&] { Bare(bytes); }));
    Count rows;
    whole.Take(Measure([&] { SheetReader().Read(bytes, rows); }));
    if (rows.rows != kRows) throw UserError("The rows don't agree.");
  }
  const std::string what = std::to_string(kRows) + " rows of " + std::to_string(kColumns) + " cells";
  Print(what + ", inflated and walked", bare.Cpu(), "s",
        Number(static_cast<double>(bytes.size()) / 1e6) + " MB");
  Print("... read as a spreadsheet (2 x walked)", whole.Cpu(), Bound::AtMost, 2 * bare.Cpu(), "s");
  Print("... the same", whole.Cpu(), Bound::AtMost, 1.5, "s");
  Print("... at its height", Apart(bytes).megabytes, Bound::AtMost, kMegabytes, "MB");
  for (const char* acquirer : {"Stone", "Pagar.me", "Yapay"}) {
    Best best;
    for (int run = 0; run < kRuns; ++run) {
      CardCount lines;
      const std::unique_ptr<SheetSink> sink = Sink(acquirer, lines);
      best.Take(Measure([&] { SheetReader().Read(bytes, *sink); }));
      if (lines.lines != kRows - 1) throw UserError("The lines don't agree.");
    }
    Print("... read as a file of " + std::string(acquirer), best.Cpu(), Bound::AtMost, 1.5, "s");
    Print("... at its height", Apart(bytes, acquirer).megabytes, Bound::AtMost, kMegabytes, "MB");
  }
  Hostile();
  return EXIT_SUCCESS;
}

}  // namespace

// With a file, and an acquirer's name or none: reads it and tells what that took.
int main(int count, char** arguments) try {
  if (count < 3) return Run();
  const Taken taken = ReadFile(arguments[1], arguments[2]);
  std::cout << taken.seconds << " " << taken.megabytes << " " << taken.refused << "\n";
  return EXIT_SUCCESS;
} catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
