// A bank's OFX file: read to its end or refused, and what is handed on is text.
#include <string>

#include "fuzz/require.h"
#include "reconciliation/formats/ofx.h"
#include "reconciliation/formats/outside_file.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace orv;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  OfxSummary summary;
  std::size_t lines = 0;
  try {
    const std::string text = OutsideText(bytes);
    Require(ValidUtf8(text));
    // No character becomes more than three bytes.
    Require(text.size() <= 3 * size);
    if (const auto bank = OfxBank(text)) Require(CharCount(*bank) <= 3 && ValidUtf8(*bank));
    const auto take = [&](const StatementLine& line) {
      ++lines;
      Require(!line.dt_cont.Empty() && line.valor >= Currency() && line.valor <= kMaxLineAmount);
      Require(line.operacao == "C" || line.operacao == "D");
      Require(ValidUtf8(line.docto) && ValidUtf8(line.obs));
      Require(line.docto.size() + line.obs.size() <= text.size());
    };
    ReadOfx(text, {take, [](Date) {}}, summary);
  } catch (const UserError& e) {
    Require(ValidUtf8(e.what()));
  }
  Require(lines == summary.lines && summary.accounts.size() <= OfxSummary::kAccounts);
  if (const auto amount = OfxAmount(bytes)) Require(*amount >= Currency());
  return 0;
}
