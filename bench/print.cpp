// A report of 10,000 rows laid out and written down in each form.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "bench/measure.h"
#include "host/print/writers.h"
#include "toolkit/client_dataset.h"
#include "toolkit/error.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr double kPagesASecond = 200;

struct Accounts : TClientDataSet {
  explicit Accounts(int rows) : TClientDataSet("TbContas") {
    CreateDataSet();
    for (int i = 0; i < rows; ++i) {
      Append();
      Contas = Value(std::to_string(10000 + i) + "-" + std::to_string(i % 10));
      Descricao = Value("CONTA DE MOVIMENTO " + std::to_string(i));
      Empresa = Value("COMERCIAL AROEIRA");
      Banco = Value(std::to_string(100 + i % 800));
      Codigo = Value("001");
      Tipo = Value("C");
      Saldo = Value(Currency::FromCents(i * 7919LL - 5000000));
      Pendente = Value(Currency::FromCents(i * 31LL));
      Previsao = Value(Currency::FromCents(-i * 17LL));
      Post();
    }
  }
  Field Contas{*this, "Contas", FieldType::String, 15};
  Field Descricao{*this, "Descricao", FieldType::String, 50};
  Field Empresa{*this, "Empresa", FieldType::String, 50};
  Field Banco{*this, "Banco", FieldType::String, 3};
  Field Codigo{*this, "Codigo", FieldType::String, 3};
  Field Tipo{*this, "Tipo", FieldType::String, 1};
  Field Saldo{*this, "Saldo", FieldType::Currency};
  Field Pendente{*this, "Pendente", FieldType::Currency};
  Field Previsao{*this, "Previsao", FieldType::Currency};
};

Report Make(Accounts& accounts) {
  ReportInput input;
  input.company = "Comercial Aroeira";
  input.user = "ana";
  input.now = DateTime(Date(2026, 11, 23), 14, 5, 0);
  input.set = [&](std::string_view name) -> DataSet* { return name == "TbContas" ? &accounts : nullptr; };
  Report report = LayOut(FindTemplate("WCCSaldoConta", ""), input);
  if (!report.notes.empty()) throw UserError(report.notes[0]);
  return report;
}

// How many pages a PDF has, by its objects.
std::size_t PagesOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), {}};
  std::size_t pages = 0;
  for (std::size_t at = 0; (at = bytes.find("/Type /Page", at)) != std::string::npos; at += 11)
    pages += bytes[at + 11] != 's';
  return pages;
}

int Run() {
  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("orvcc-print-" + std::to_string(getpid()));
  std::filesystem::create_directories(folder);
  double each = 0;
  for (const int rows : {10'000, 100'000}) {
    Accounts accounts(rows);
    Best layout;
    Report report;
    for (int run = 0; run < 3; ++run) layout.Take(Measure([&] { report = Make(accounts); }));
    const double now = layout.Cpu() / rows * 1e6;
    const std::string what = std::to_string(rows) + " rows laid out, each";
    // As many rows again cost as much again.
    if (each == 0) {
      Print(what, now, "us", "");
      each = now;
    } else {
      Print(what, now, Bound::AtMost, 2 * each, "us", "");
    }
    for (const char* format : {"html", "txt", "csv", "xlsx", "pdf"}) {
      Best write;
      const std::filesystem::path file = folder / (std::string("report.") + format);
      for (int run = 0; run < 3; ++run) write.Take(Measure([&] { WriteReport(report, format, file); }));
      if (std::string_view(format) == "pdf") {
        const auto pages = static_cast<double>(PagesOf(file));
        Print("pages a second of a PDF of " + std::to_string(rows) + " rows", pages / write.Cpu(),
              Bound::AtLeast, kPagesASecond, "pages", Number(pages) + " pages");
      } else {
        Print(std::to_string(rows) + " rows as " + format, write.Cpu(), "s", "");
      }
    }
  }
  std::filesystem::remove_all(folder);
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
