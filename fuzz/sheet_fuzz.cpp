// Spreadsheets: the input is a whole file, or a number format, the styles, the shared texts and the rows of
// one, parted by zeros, so that what stands in a file is reached too.
#include <cstring>

#include "fuzz/require.h"
#include "host/sheet/number_format.h"
#include "host/sheet/sheet_reader.h"
#include "tests/sheet/zip_bytes.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace {

struct Rows : orv::SheetSink {
  bool Row(const orv::SheetRow& row) override {
    Require(row.Number() == ++rows);
    for (int column = 1; column <= row.Columns(); ++column) Require(orv::ValidUtf8(row.Text(column)));
    // A gap of a million rows is known to cost nothing but time.
    return rows < 2000;
  }
  void TakeBack() noexcept override { back = true; }
  int rows = 0;
  bool back = false;
};

void Read(std::string_view bytes) {
  Rows rows;
  try {
    orv::SheetReader().Read(bytes, rows);
    Require(!rows.back);
  } catch (const orv::UserError& e) {
    Require(rows.back && orv::ValidUtf8(e.what()));
  }
}

void Show(std::string_view code, std::string_view bytes) {
  if (!orv::ValidUtf8(code)) return;
  const orv::NumberFormat format(code);
  double number = 0;
  std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
  if (!(number - number == 0)) return;
  std::string out;
  format.Number(number, out);
  format.Text("ação", out);
  if (const auto time = orv::SerialTime(number, bytes.size() % 2 == 1); time && format.ShowsTime())
    format.Time(*time, number, out);
  Require(orv::ValidUtf8(out) && out.size() < std::size_t{64} << 10);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  if (input.starts_with("PK")) {
    Read(input);
    return 0;
  }
  const std::vector<std::string> pieces = orv::Split(input, std::string_view("\0", 1));
  const auto piece = [&](std::size_t i) { return i < pieces.size() ? pieces[i] : ""; };
  Show(piece(0), piece(1));
  if (pieces.size() < 3) return 0;
  Read(orv::test::ZipBytes(
      {{"xl/workbook.xml", "<workbook><sheets><sheet id=\"a\"/></sheets></workbook>"},
       {"xl/_rels/workbook.xml.rels", "<a><Relationship Id=\"a\" Type=\"/worksheet\" Target=\"a\"/></a>"},
       {"xl/styles.xml", "<a>" + piece(1) + "</a>"},
       {"xl/sharedStrings.xml", "<a>" + piece(2) + "</a>"},
       {"xl/a", "<a><sheetData>" + piece(3) + "</sheetData></a>"}},
      ZIP_CM_STORE));
  return 0;
}
