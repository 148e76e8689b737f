// Templates of reports: read or refused with a message, laid out and written down, whatever they hold.
#include <string_view>

#include "host/print/writers.h"
#include "toolkit/client_dataset.h"

namespace {

struct Rows : orv::TClientDataSet {
  explicit Rows(const char* name) : TClientDataSet(name) {
    CreateDataSet();
    for (int i = 0; i < 5; ++i) {
      Append();
      if (i > 0) A = orv::Value(i == 1 ? "=<\"]" : "ação");
      B = orv::Value(0.1 * (i - 2));
      C = orv::Value(orv::Date(2026, 2, 26 + i / 2));
      D = orv::Value(orv::Currency::FromCents(i * 31));
      Post();
    }
  }
  orv::Field A{*this, "A", orv::FieldType::String, 9};
  orv::Field B{*this, "B", orv::FieldType::Float};
  orv::Field C{*this, "C", orv::FieldType::Date};
  orv::Field D{*this, "D", orv::FieldType::Currency};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static Rows rows[] = {Rows("T"), Rows("U"), Rows("V")};
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  orv::ReportInput input;
  input.company = "Malharia";
  input.now = orv::DateTime(orv::Date(2026, 11, 23), 1, 2, 3);
  input.set = [](std::string_view name) -> orv::DataSet* {
    for (Rows& set : rows) {
      if (set.Name() == name) return &set;
    }
    return nullptr;
  };
  input.answer = [](std::string_view name) -> std::optional<orv::ReportAnswer> {
    if (name == "E") return orv::ReportAnswer{0, [](auto) { return orv::Value("5"); }};
    if (name == "F") return orv::ReportAnswer{1, [](auto given) { return given[0]; }};
    return std::nullopt;
  };
  try {
    const orv::Report report = orv::LayOut(orv::ReportTemplate::Parse("x", text), input);
    orv::ReportText66(report);
    orv::ReportHtml(report);
    for (const orv::ReportRows& table : report.sets) orv::TableCsv(table);
  } catch (const orv::UserError&) {
  }
  return 0;
}
