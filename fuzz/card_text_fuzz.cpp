// Acquirers' separated files: the first byte picks the reader, the input's first lines are the map, the rest
// is the file.
#include <limits>
#include <string>

#include "fuzz/card_lines.h"
#include "reconciliation/formats/outside_file.h"

namespace {

constexpr const char* kFields[] = {
    "NR_PARCELA",     "TOTAL_PARCELA",  "CARTAO",      "DATA",      "STATUS",
    "NR_COMPROVANTE", "NR_AUTORIZACAO", "VALOR_TOTAL", "VALOR_LIQ", "VALOR_PARCELA",
    "VALOR_BRU",      "TAXA",           "EMPRESA",     "MEIO_PAG",  "ID"};
// Far columns as well as near ones.
constexpr int kFar[] = {
    0, -1, 16385, 1'000'000, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace orv;
  if (size == 0) return 0;
  const Date today(2026, 11, 23);
  CheckedLines lines(size);
  ReadOrRefuse([&] {
    const std::string text = OutsideText(std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
    TextLines head(text);
    std::string_view line(text.data(), 0);
    ColumnMap map;
    if (head.Next(line)) map.separador = CutChars(line, 5);
    if (head.Next(line)) map.linha = static_cast<int>(line.size()) - 1;
    for (int row = 0; row < 15 && head.Next(line) && line.size() >= 2; ++row) {
      const int column = static_cast<unsigned char>(line[1]) - 'A' + 1;
      map.campos.emplace(
          kFields[static_cast<unsigned char>(line[0]) % std::size(kFields)],
          line.size() > 2 ? kFar[static_cast<std::size_t>(column + 64) % std::size(kFar)] : column);
    }
    // What follows the line that ended the map.
    const std::string_view file(
        line.data() + line.size(),
        static_cast<std::size_t>(text.data() + text.size() - line.data()) - line.size());
    switch (data[0] % 5) {
      case 0:
        return ReadCieloCsv(file, map, today, lines);
      case 1:
        return ReadCieloOrders(file, &map, today, lines);
      case 2:
        return ReadCieloOrders(file, nullptr, today, lines);
      case 3:
        return ReadSeparatedSales(file, map, today, lines);
      default:
        return ReadSeparatedPayments(file, map, lines);
    }
  });
  Require(lines.lines <= size);
  return 0;
}
