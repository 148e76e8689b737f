// Filter texts over a few rows: understood or refused with a message, whatever they hold.
#include <string_view>

#include "toolkit/client_dataset.h"

namespace {

struct Rows : orv::TClientDataSet {
  Rows() : TClientDataSet("TbX") {
    CreateDataSet();
    for (int i = 0; i < 3; ++i) {
      Append();
      if (i > 0) Code = i == 1 ? "a%_" : "";
      Amount = orv::Currency(i - 1);
      Day = orv::Date(2026, 2, 27 + i / 2);
      Post();
    }
    SetFiltered(true);
  }
  orv::Field Code{*this, "Code", orv::FieldType::String, 4};
  orv::Field Amount{*this, "Amount", orv::FieldType::Currency};
  orv::Field Day{*this, "Day", orv::FieldType::Date};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static Rows rows;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    rows.SetFilter(text);
    for (rows.First(); !rows.Eof(); rows.Next()) rows.Code.AsString();
  } catch (const orv::UserError&) {
  }
  orv::MatchesLike(text.substr(0, size / 2), text.substr(size / 2));
  return 0;
}
