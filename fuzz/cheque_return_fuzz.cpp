// A bank's return file of cheques: the input's first five lines are the columns, the rest is the file.
#include <string>

#include "fuzz/require.h"
#include "reconciliation/formats/cheque_return.h"
#include "reconciliation/formats/outside_file.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace orv;
  try {
    const std::string text = OutsideText(std::string(reinterpret_cast<const char*>(data), size));
    PositionLayout layout;
    TextLines head(text);
    std::size_t used = 0;
    std::string_view line;
    for (const char* field : {"BANCO_CH", "AGENCIA_CH", "CONTA_CH", "NUMERO_CH", "DATA_CONT"}) {
      if (!head.Next(line)) break;
      const auto byte = [&](std::size_t i) {
        return i < line.size() ? static_cast<unsigned char>(line[i]) : 0;
      };
      if (byte(0) != '-') layout.campos.push_back({field, byte(0) - 40, byte(1) - 40, ""});
      used += line.size() + 1;
    }
    for (const ChequeReturn& one :
         ReadChequeReturn(std::string_view(text).substr(std::min(used, text.size())), layout)) {
      for (const std::string& part : one.cheque) Require(ValidUtf8(part) && part.size() <= text.size());
      try {
        const Date day = ChequeReturnDay(one.data);
        Require(day.Year() >= 1900 && day.Year() <= 2100);
      } catch (const UserError& e) {
        Require(ValidUtf8(e.what()));
      }
    }
  } catch (const UserError& e) {
    Require(ValidUtf8(e.what()));
  }
  return 0;
}
