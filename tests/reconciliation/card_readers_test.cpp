// The readers of card acquirers' files: over the files in files/, each named after what is odd in it, and
// with every piece of a text, and every kind of cell, in every field.
#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <random>

#include "reconciliation/formats/card_sheets.h"
#include "reconciliation/formats/outside_file.h"
#include "tests/support/desk_test.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

const Date kToday(2026, 11, 23);

// CARTAO, MEIO_PAG, COMPROVANTE, PARCELA, TIPO_ARQUIVO, STATUS, its text, EMPRESA, ID, the day, and the
// amounts: total, instalment, gross, net, rate.
std::string Row(std::initializer_list<std::string_view> texts, const std::string& day,
                std::initializer_list<Currency> amounts) {
  std::string row;
  for (const std::string_view text : texts) row.append(text).append("|");
  row += day;
  for (const Currency amount : amounts) row += " " + amount.Neutral();
  return row + "\n";
}

struct Lines : CardSink {
  void Line(const CardLine& l) override {
    text += Row({l.cartao, l.meio_pag, l.comprovante, l.parcela, l.tipo_arquivo, l.status, l.desc_status,
                 l.empresa, l.id},
                l.data == DateTime() ? "" : l.data.Neutral(),
                {l.valor_total, l.valor_parcela, l.valor_bruto, l.valor_liq, l.taxa});
  }
  void TakeBack() noexcept override {}
  std::string text;
};

template <class Read>
std::string Told(const Read& read) {
  Lines lines;
  try {
    read(lines);
  } catch (const UserError& e) {
    lines.text += std::string("! ") + e.what() + "\n";
  }
  return lines.text;
}

std::string File(const std::string& name) {
  std::ifstream in(ORV_FILES + name, std::ios::binary);
  return OutsideText(std::string(std::istreambuf_iterator<char>(in), {}));
}

// Each field in the column of its place in the list.
ColumnMap Columns(const std::string& campos) {
  ColumnMap map{";", 2, {}};
  for (const std::string& campo : Split(campos, " ")) map.campos.emplace(campo, map.campos.size() + 1);
  return map;
}
const ColumnMap kGetnet =
    Columns("NR_AUTORIZACAO NR_COMPROVANTE DATA VALOR_TOTAL CARTAO VALOR_PARCELA NR_PARCELA");

TEST(CardReadersTest, ReadsWhatAcquirersWrite) {
  EXPECT_EQ(
      Told([](CardSink& s) { ReadCieloEdi(File("cielo_sem_lote.txt"), "04", s); }),
      "||001234|1/1|04||||| 100.0000 100.0000 0.0000 100.0000 0.0000\n"
      "Mastercard||001235|2/3|04|01|Pago|00001054778||2026-11-20 00:00:00 300.0000 100.0000 0.0000 98.0500 "
      "1.9500\n"
      "Visa||00    |12/12|04|07||00001054779|| 50.0100 0.0000 0.0000 0.0000 0.0000\n"
      "! Linha 8 do arquivo: o número da parcela, nas colunas 60 e 61, é \"1A\". Eram esperados dois "
      "dígitos: confira o arquivo.\n");
  // 1,01 less half a percent is 1,00495.
  EXPECT_EQ(
      Told([](CardSink& s) { ReadCieloEdi(File("cielo_latin1.txt"), "03", s); }),
      "Ourocard||É01235|1/3|03|00|Agendado|LOJA ÁÉÍÓÚ ||2026-11-18 00:00:00 3.0300 1.0100 0.0000 1.0000 "
      "0.5000\n");
  EXPECT_EQ(Told([](CardSink& s) { ReadCieloEdi(File("cielo_latin1.txt"), "04", s); }),
            "! Tipo do arquivo inválido para opção selecionada.\n");
  EXPECT_EQ(
      Told([](CardSink& s) { ReadSeparatedSales(File("getnet_dois_milhares.csv"), kGetnet, kToday, s); }),
      "CRÉDITO À VISTA||A1/N1|1/3||||||2026-11-23 00:00:00 0.0000 1234.5600 0.0000 0.0000 0.0000\n"
      "\"VISA||A2/|||||||2026-11-23 00:00:00 12.3457 -5.5000 0.0000 0.0000 0.0000\n"
      "ELO||/N3|1de 3||||||2026-11-23 00:00:00 0.0000 0.0000 0.0000 0.0000 0.0000\n"
      "! Linha 6 do arquivo: não há a coluna 4, onde o layout do banco põe VALOR_TOTAL. A linha tem 3 "
      "colunas: confira o arquivo, o separador e o layout.\n");
}

TEST(CardReadersTest, MapsThatLeadNowhereAreRefused) {
  const std::string text = "a;b\nc;d\n";
  ColumnMap map = kGetnet;
  const auto payments = [&] { return Told([&](CardSink& s) { ReadSeparatedPayments(text, map, s); }); };
  for (const int column :
       {0, -7, 3, 1'000'000, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    map.campos["NR_COMPROVANTE"] = column;
    EXPECT_TRUE(payments().starts_with("! Linha 2 do arquivo: não há a coluna ")) << column;
    const bool refused = column < 1 || column > 16384;
    EXPECT_EQ(Told([&](CardSink& sink) { PagarMeSheet(sink, &map, kToday); }).empty(), !refused) << column;
  }
  map.separador = "";
  EXPECT_TRUE(payments().find(" A linha tem 1 coluna: ") != std::string::npos) << payments();
  map.linha = 0;
  EXPECT_EQ(payments(), "! A primeira linha de dados, no layout do banco, é 0: informe 1 ou mais.\n");
  map.campos.clear();
  EXPECT_EQ(payments(), "! O banco não tem layout de arquivo de cartões. Cadastre-o antes.\n");
}

const std::vector<std::string> kPieces = Split(
    ReplaceAll(
        R"(R$ 1.234,56~-R$ 0,05~1.234.567,89~R$ R$ 1,00~12.34~1,5~ 7,999949 ~999999999999,99~999999999999,99999~+,55555
03~12 ~-4~0~-~~,~nan~1e3~Pago~ Agendado ~"A~ÇÃO~1 de 2~31/02/2026~5/5/26~23/11/2026 24:00~23/11/2026~ 1/2/2026 
9/11/2026 7:05~2026-11-22~2026x01x31T10)",
        "\n", "~"),
    "~");

// Each field has each piece once, beside others; in the second round a third of the fields has no column.
TEST(CardReadersTest, EveryPieceInEveryField) {
  std::string read;
  for (const int kind : {0, 1, 2, 3}) {
    for (const bool sparse : {false, true}) {
      ColumnMap map = Columns(
          "VALOR_TOTAL VALOR_PARCELA VALOR_BRU VALOR_LIQ TAXA DATA NR_AUTORIZACAO NR_COMPROVANTE CARTAO "
          "NR_PARCELA TOTAL_PARCELA STATUS EMPRESA MEIO_PAG ID");
      if (sparse) std::erase_if(map.campos, [](const auto& campo) { return campo.second % 3 == 0; });
      if (kind >= 2) map.separador = sparse ? "; " : "::", map.linha = 3;
      std::string text(kind == 0 ? "\n" : kind == 1 ? "\n\n\n\n" : "\n\n");
      for (std::size_t line = 0; line < kPieces.size(); ++line) {
        for (std::size_t i = 0; i < 15; ++i)
          text += (i == 0 ? "" : map.separador) + kPieces[(line + i * 7) % kPieces.size()];
        text += "\r\n";
      }
      read += "##### " + std::to_string(kind) + (sparse ? " sparse\n" : "\n") + Told([&](CardSink& s) {
                if (kind == 0) ReadCieloCsv(text, map, kToday, s);
                if (kind == 1) ReadCieloOrders(text, &map, kToday, s);
                if (kind == 2) ReadSeparatedSales(text, map, kToday, s);
                if (kind == 3) ReadSeparatedPayments(text, map, s);
              });
    }
  }
  ExpectFile(read, ORV_FILES "card_pieces.txt");
}

using enum SheetKind;
const SheetCell kCells[] = {{Number, 49.990000000000002, {}, "50"},
                            {Number, 12345678901234, {}, "1,2E+13"},
                            {Number, 3, {}, "03"},
                            {Number, 0, {}, "0,00"},
                            {Number, -2.5, {}, "(2,50)"},
                            {SheetKind::Date, 46347, {orv::Date(2026, 11, 21), 0, 0, 0}, "nov/26"},
                            {SheetKind::Date, 46348.4375, {orv::Date(2026, 11, 22), 10, 30, 0}, "22"},
                            {SheetKind::Date, 0.4375, {orv::Date(1899, 12, 30), 10, 30, 0}, "10:30"},
                            {Text, 0, {}, "9/11/2026 7:05"},
                            {Text, 0, {}, "1.234,56"},
                            {Text, 0, {}, "97,5"},
                            {Text, 0, {}, "R$ 1,00"},
                            {Text, 0, {}, "12 "},
                            {Text, 0, {}, " - "},
                            {Bool, 1, {}, "VERDADEIRO"},
                            {Error, 0, {}, "#N/D"},
                            {Empty, 0, {}, ""}};

TEST(CardReadersTest, EveryCellInEveryColumn) {
  const ColumnMap map =
      Columns("VALOR_LIQ VAL_EST_BRU VAL_EST_LIQ ID NR_COMPROVANTE NR_PARCELA DATA MEIO_PAG VALOR_BRU TAXA");
  std::string read;
  const auto feed = [&](const char* name, const auto& make) {
    Lines lines;
    auto sheet = make(lines);
    int number = 0;
    // Neighbours at several distances: whether a net amount is there decides which others are read.
    for (const std::size_t step : {3U, 5U, 13U, 15U}) {
      for (std::size_t line = 0; line < std::size(kCells); ++line) {
        std::vector<SheetCell> cells;
        for (std::size_t i = 0; i < 14; ++i) cells.push_back(kCells[(line + i * step) % std::size(kCells)]);
        if (sheet->Row(SheetRow(++number, cells))) continue;
        lines.text += "ends\n";
        sheet = make(lines), number = 1;
      }
    }
    read += std::string("##### ") + name + "\n" + lines.text;
  };
  feed("Stone", [](CardSink& s) { return std::make_unique<StoneSheet>(s); });
  feed("Pagar.me", [](CardSink& s) { return std::make_unique<PagarMeSheet>(s, nullptr, kToday); });
  feed("Pagar.me, map", [&](CardSink& s) { return std::make_unique<PagarMeSheet>(s, &map, kToday); });
  feed("Yapay", [](CardSink& s) { return std::make_unique<YapaySheet>(s, nullptr, kToday); });
  ExpectFile(read, ORV_FILES "card_cells.txt");
}

TEST(CardReadersTest, RecordsOfFixedColumns) {
  std::string read;
  for (const bool payments : {false, true}) {
    std::mt19937 random(7);
    std::string text = std::string(47, '0') + (payments ? "04" : "03") + "\n";
    for (int number = 1; number < 60; ++number) {
      // A letter of two bytes counts as one column.
      std::vector<std::string> record(250, random() % 2 == 0 ? "Ç" : " ");
      const auto put = [&](std::size_t column, const std::string& what) {
        for (const char c : what) record[column++ - 1] = c;
      };
      const auto digits = [&](std::size_t column, int count) {
        for (; count > 0; --count)
          record[column++ - 1] = static_cast<char>('0' + (random() % 3 == 0 ? random() % 10 : 0));
      };
      const bool batch = random() % 4 == 0;
      const char* const days[] = {"261118", "260230", "2611 8"};
      put(1, batch ? "1" : "2");
      if (batch == payments) put(batch ? 38 : 40, days[random() % 3]);
      if (batch) {
        digits(2, 11), digits(210, 4), put(123, "44");
      } else {
        digits(47, 13), digits(114, 13), digits(93, 6), digits(60, 2), digits(62, 2);
      }
      text += Join(record, "") + "\n";
    }
    read += Told([&](CardSink& s) { ReadCieloEdi(text, payments ? "04" : "03", s); });
  }
  ExpectFile(read, ORV_FILES "card_records.txt");
}

}  // namespace
}  // namespace orv::test
