// A bank's file of lines: the input's first lines are the layout, the rest is the file.
#include <string>

#include "fuzz/require.h"
#include "reconciliation/formats/bank_text.h"
#include "reconciliation/formats/outside_file.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace {

constexpr const char* kFields[] = {"DOCTO", "DT_CONT",   "VALOR", "OPERACAO", "OBSERVACAO", "OBSERVACAO2",
                                   "CONTA", "DIG_CONTA", "CHAVE", "IMPORTA",  "OUTRO"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace orv;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  BankTextSummary summary;
  std::size_t lines = 0;
  try {
    const std::string text = OutsideText(bytes);
    TextLines head(text);
    std::string_view line;
    PositionLayout layout;
    std::size_t used = 0;
    if (head.Next(line)) layout.separador = CutChars(line, 5), used = line.size();
    // Fields: which, where, how long, and a mask.
    for (int row = 0; row < 12 && head.Next(line) && !line.empty(); ++row) {
      const auto byte = [&](std::size_t i) {
        return i < line.size() ? static_cast<unsigned char>(line[i]) : 0;
      };
      layout.campos.push_back({kFields[byte(0) % std::size(kFields)], byte(1) - 40, byte(2) - 40,
                               std::string(line.size() > 3 ? line.substr(3, 10) : "")});
      used += line.size() + 1;
    }
    const std::string accounts[] = {"10250-1", "20418-7", "12"};
    const auto take = [&](const StatementLine& s) {
      ++lines;
      Require(s.conta == accounts[1] && !s.dt_cont.Empty() && s.valor.Abs() <= kMaxLineAmount);
      for (const std::string_view one : {s.docto, s.operacao, s.obs, s.chave}) {
        Require(ValidUtf8(one) && one.size() <= 3 * text.size() + 8);
      }
    };
    ReadBankText(std::string_view(text).substr(std::min(used, text.size())), layout, accounts, accounts[1],
                 take, summary);
  } catch (const UserError& e) {
    Require(ValidUtf8(e.what()));
  }
  Require(lines == summary.lines);
  Require(summary.lines + summary.other_account + summary.refused <= summary.read);
  return 0;
}
