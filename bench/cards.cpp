// Card acquirers' files of a hundred thousand lines, as text: Cielo's fixed columns and separated fields.
// Their spreadsheets are measured where the reader of spreadsheets is.
#include <cstdlib>
#include <iostream>

#include "bench/measure.h"
#include "reconciliation/formats/card_file.h"
#include "reconciliation/formats/outside_file.h"
#include "toolkit/error.h"

namespace {

using namespace orv;
using namespace orv::bench;

constexpr int kRuns = 9, kLines = 100'000;

struct Sum : CardSink {
  void Line(const CardLine& line) override {
    ++lines;
    total += line.valor_parcela + line.valor_liq + line.valor_bruto;
  }
  void TakeBack() noexcept override {}
  int lines = 0;
  Currency total;
};

std::string Padded(int64_t number, std::size_t width) {
  const std::string digits = std::to_string(number);
  return std::string(width - digits.size(), '0') + digits;
}

// Records of 250 characters; the letters of a batch's name are beyond ASCII where `accents`.
std::string Edi(bool accents) {
  const auto put = [](std::string& record, std::size_t column, const std::string& text) {
    record.replace(column - 1, text.size(), text);
  };
  std::string file, header(250, ' ');
  put(header, 1, "0");
  put(header, 48, "03");
  file += header + "\r\n";
  for (int i = 0; i < kLines; ++i) {
    std::string record(250, ' ');
    if (i % 50 == 0) {
      put(record, 1, "1" + Padded(1050 + i, 11));
      put(record, 123, "01");
      put(record, 185, "002");
      put(record, 210, "0195");
      file += record + "\r\n";
      record.assign(250, ' ');
    }
    put(record, 1, "2");
    put(record, 40, "2611" + Padded(10 + i % 20, 2));
    put(record, 47, Padded(i * 31LL % 900'000, 13) + "0103");
    put(record, 93, Padded(i, 6));
    put(record, 114, Padded(i * 93LL % 900'000, 13));
    if (accents) put(record, 130, "S\xC3O JO\xC3O");
    file += record + "\r\n";
  }
  return file;
}

// Fields as acquirers part them; `point` for amounts with a decimal point.
std::string Separated(bool point) {
  std::string file = "AUTORIZA\xC7\xC3O;VENDA\r\n";
  for (int i = 0; i < kLines; ++i) {
    const std::string cents = (point ? "." : ",") + Padded(i % 100, 2);
    const std::string whole = std::to_string(i % 900), day = Padded(10 + i % 20, 2);
    file += Padded(i * 7919LL % 1'000'000, 6) + ";" + Padded(i, 12) + ";" +
            (point ? "2026-11-" + day : day + "/11/2026 10:20") +
            ";MASTERCARD CR\xC9"
            "DITO;R$ " +
            whole + cents + ";R$ " + whole + cents + ";1;3;Pago;-R$ 2" + cents +
            ";LOJA CENTRO;1054778001\r\n";
  }
  return file;
}

void Report(const char* what, const std::string& bytes,
            const std::function<void(std::string_view, Sum&)>& read) {
  Best best;
  for (int run = 0; run < kRuns; ++run) {
    Sum sum;
    best.Take(Measure([&] { read(OutsideText(bytes), sum); }));
    if (sum.lines != kLines || sum.total.IsZero()) throw UserError("The lines don't agree.");
  }
  const double megabytes = static_cast<double>(bytes.size()) / 1e6;
  Print(what, megabytes / best.Cpu(), Bound::AtLeast, 100, "MB/s", Number(megabytes) + " MB, 100,000 lines");
}

int Run() {
  const Date today(2026, 11, 20);
  const auto edi = [](std::string_view text, Sum& sum) { ReadCieloEdi(text, "03", sum); };
  Report("Cielo's fixed columns", Edi(false), edi);
  Report("... in Windows-1252", Edi(true), edi);
  const ColumnMap cielo{";",
                        2,
                        {{"NR_COMPROVANTE", 2},
                         {"DATA", 3},
                         {"CARTAO", 4},
                         {"VALOR_PARCELA", 5},
                         {"VALOR_LIQ", 6},
                         {"NR_PARCELA", 7},
                         {"TOTAL_PARCELA", 8},
                         {"STATUS", 9},
                         {"TAXA", 10},
                         {"EMPRESA", 11}}};
  Report("Cielo's separated sales", Separated(false),
         [&](std::string_view text, Sum& sum) { ReadCieloCsv(text, cielo, today, sum); });
  ColumnMap others = cielo;
  others.campos["NR_AUTORIZACAO"] = 1;
  others.campos["VALOR_TOTAL"] = 5;
  Report("Getnet's and Rede's sales", Separated(false),
         [&](std::string_view text, Sum& sum) { ReadSeparatedSales(text, others, today, sum); });
  Report("... their payments", Separated(true),
         [&](std::string_view text, Sum& sum) { ReadSeparatedPayments(text, others, sum); });
  ColumnMap orders = cielo;
  orders.campos = {{"NR_COMPROVANTE", 2}, {"DATA", 3},       {"MEIO_PAG", 4}, {"VALOR_BRU", 5},
                   {"VALOR_LIQ", 6},      {"NR_PARCELA", 7}, {"ID", 12}};
  Report("Cielo's orders", "\n\n\n" + Separated(true),
         [&](std::string_view text, Sum& sum) { ReadCieloOrders(text, &orders, today, sum); });
  return EXIT_SUCCESS;
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
