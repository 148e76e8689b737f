// Cielo's fixed columns: the first byte tells which kind of file is expected, the rest is the file, once as
// it is, and once as a sale behind 59 columns, which digits reach at once.
#include <string>

#include "fuzz/card_lines.h"
#include "reconciliation/formats/outside_file.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace orv;
  if (size == 0) return 0;
  const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::string_view tipo = data[0] % 2 == 0 ? "03" : "04";
  for (const std::string& file : {bytes, "2" + std::string(58, '1') + bytes}) {
    CheckedLines lines(file.size());
    ReadOrRefuse([&] {
      const std::string text = OutsideText(file);
      ReadCieloEdi(text, tipo, lines);
    });
    Require(lines.lines <= file.size());
  }
  return 0;
}
