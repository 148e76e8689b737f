// Acquirers' spreadsheets: the input is a map's columns and the cells of rows, which each of the sinks takes
// as the reader of books would hand them on.
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/card_lines.h"
#include "reconciliation/formats/card_sheets.h"

namespace {

constexpr const char* kFields[] = {"DATA",      "ID",   "NR_COMPROVANTE", "NR_PARCELA",  "MEIO_PAG",
                                   "VALOR_BRU", "TAXA", "VALOR_LIQ",      "VAL_EST_BRU", "VAL_EST_LIQ"};

struct Cells {
  std::vector<std::string> texts;
  std::vector<orv::SheetCell> cells;
};

// A row's cells: kind and length by a byte, then a text, or the bytes of a number.
Cells TakeRow(std::string_view& input) {
  using namespace orv;
  Cells row;
  // The texts stay where they are.
  row.texts.reserve(20);
  for (int column = 0; column < 20 && !input.empty(); ++column) {
    const auto mark = static_cast<unsigned char>(input[0]);
    input.remove_prefix(1);
    if (mark == 0xFF) break;
    SheetCell cell;
    cell.kind = static_cast<SheetKind>(mark % 6);
    const std::string_view bytes = input.substr(0, mark / 6);
    input.remove_prefix(bytes.size());
    std::memcpy(&cell.number, bytes.data(), std::min(bytes.size(), sizeof cell.number));
    // The reader has no others.
    if (!std::isfinite(cell.number)) cell.number = 0;
    if (cell.kind == SheetKind::Date)
      cell.time = DateTime::FromSeconds(static_cast<int64_t>(std::fmod(cell.number, 2.5e11)));
    if (cell.time.Day().Year() < 1899 || cell.time.Day().Year() > 9999) cell.time = DateTime();
    if (cell.kind != SheetKind::Empty) {
      row.texts.push_back(CleanUtf8(bytes));
      cell.text = row.texts.back();
    }
    row.cells.push_back(cell);
  }
  return row;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace orv;
  std::string_view input(reinterpret_cast<const char*>(data), size);
  ColumnMap map;
  for (const char* field : kFields) {
    if (input.empty()) break;
    if (input[0] != 'x') map.campos.emplace(field, static_cast<signed char>(input[0]));
    input.remove_prefix(1);
  }
  std::vector<Cells> rows;
  while (!input.empty()) rows.push_back(TakeRow(input));
  const auto feed = [&](SheetSink& sink) {
    int number = 0;
    for (const Cells& row : rows) {
      if (!sink.Row(SheetRow(++number, row.cells))) break;
    }
  };
  const Date today(2026, 11, 23);
  CheckedLines lines(size);
  StoneSheet stone(lines);
  feed(stone);
  Require(rows.empty() || lines.lines < rows.size());
  for (const ColumnMap* columns :
       {static_cast<const ColumnMap*>(nullptr), static_cast<const ColumnMap*>(&map)}) {
    ReadOrRefuse([&] {
      lines.TakeBack();
      PagarMeSheet pagarme(lines, columns, today);
      feed(pagarme);
      YapaySheet yapay(lines, columns, today);
      feed(yapay);
      yapay.TakeBack();
      Require(lines.lines == 0);
    });
  }
  return 0;
}
