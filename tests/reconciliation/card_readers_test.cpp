// The readers of card acquirers' files: over the files in files/, each named after what is odd in it, and
// over files made at random of pieces whose meaning is known.
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <limits>
#include <random>

#include "reconciliation/formats/card_sheets.h"
#include "reconciliation/formats/outside_file.h"
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

// A piece of a file and what it means: as an amount in ten-thousandths, where a point parts thousands (in
// sheets: where it goes) and where it parts decimals (in sheets: where it stays), as a whole number, as a day
// of Brazil and as one with the year first. What it doesn't mean is "".
struct Known {
  std::string text, thousands, decimals, whole, day, iso;
  explicit Known(const std::string& piece = "") {
    const std::vector<std::string> parts = Split(piece + "=====", "=");
    text = parts[0], thousands = parts[1], decimals = parts[2], whole = parts[3], day = parts[4],
    iso = parts[5];
  }
  Currency Thousands() const { return Currency::FromRaw(thousands.empty() ? 0 : std::stoll(thousands)); }
  Currency Decimals() const { return Currency::FromRaw(decimals.empty() ? 0 : std::stoll(decimals)); }
  int Whole(int otherwise) const { return whole.empty() ? otherwise : std::stoi(whole); }
  // Without a time.
  std::string DayOr(const std::string& otherwise) const {
    return day.ends_with("00:00:00") ? day : otherwise;
  }
};

const std::vector<std::string> kPieces = Split(
    ReplaceAll(
        R"(R$ 1.234,56=12345600~-R$ 0,05=-500=-500~1.234.567,89~R$ R$ 1,00~12.34=12340000=123400~1,5=15000=15000
 7,999949 =79999=79999~999999999999,99=9999999999999900=9999999999999900~999999999999,99999~+,55555=5556=5556
03=30000=30000=3~12 =120000=120000=12~-4=-40000=-40000=-4~0===0~-~~,~nan~1e3~Pago~ Agendado ~"A~ÇÃO~1 de 2
31/02/2026~5/5/26~23/11/2026 24:00~23/11/2026====2026-11-23 00:00:00~ 1/2/2026 ====2026-02-01 00:00:00
9/11/2026 7:05====2026-11-09 07:05:00~2026-11-22=====2026-11-22 00:00:00~2026x01x31T10=====2026-01-31 00:00:00)",
        "\n", "~"),
    "~");

using enum SheetKind;
const std::pair<const char*, SheetCell> kCells[] = {
    {"49,99=499900=499900", {Number, 49.990000000000002, {}, "50"}},
    {"12345678901234", {Number, 12345678901234, {}, "1,2E+13"}},
    {"3=30000=30000=3", {Number, 3, {}, "03"}},
    {"0===0", {Number, 0, {}, "0,00"}},
    {"-2,5=-25000=-25000", {Number, -2.5, {}, "(2,50)"}},
    {"21/11/2026====2026-11-21 00:00:00",
     {SheetKind::Date, 46347, {orv::Date(2026, 11, 21), 0, 0, 0}, "nov/26"}},
    {"22/11/2026 10:30:00====2026-11-22 10:30:00",
     {SheetKind::Date, 46348.4375, {orv::Date(2026, 11, 22), 10, 30, 0}, "22"}},
    {"10:30", {SheetKind::Date, 0.4375, {orv::Date(1899, 12, 30), 10, 30, 0}, "10:30"}},
    {"9/11/2026 7:05====2026-11-09 07:05:00", {Text, 0, {}, "9/11/2026 7:05"}},
    {"1.234,56=12345600", {Text, 0, {}, "1.234,56"}},
    {"97,5=975000=975000", {Text, 0, {}, "97,5"}},
    {"R$ 1,00", {Text, 0, {}, "R$ 1,00"}},
    {"12 =120000=120000=12", {Text, 0, {}, "12 "}},
    {" - ", {Text, 0, {}, " - "}},
    {"VERDADEIRO", {Bool, 1, {}, "VERDADEIRO"}},
    {"#N/D", {Error, 0, {}, "#N/D"}},
    {"", {Empty, 0, {}, ""}}};

struct Random {
  int Below(std::size_t most) { return static_cast<int>(engine() % most); }
  const std::string& Of(const std::vector<std::string>& any) { return any[engine() % any.size()]; }
  std::string Digits(int count) {
    std::string text;
    for (; count > 0; --count) text += static_cast<char>('0' + (Below(3) == 0 ? Below(10) : 0));
    return text;
  }
  std::mt19937 engine;
};

const std::string kNow = "2026-11-23 00:00:00";

// `kind` 0 Cielo's sales, 1 Cielo's orders, 2 sales, 3 payments; `f` gives a field; "" for no line.
template <class F>
std::string KnownLine(int kind, const F& f, std::string& before) {
  const Known &proof = f("NR_COMPROVANTE"), &parcela = f("NR_PARCELA"), &day = f("DATA"),
              &net = f("VALOR_LIQ");
  if (kind == 1) {
    if (Trim(proof.text).empty()) return "";
    const Currency gross = f("VALOR_BRU").Decimals();
    return Row({"", f("MEIO_PAG").text, proof.text, parcela.Whole(0) == 0 ? "1" : parcela.text, "", "", "",
                "", f("ID").text},
               day.DayOr(kNow), {0, 0, gross, net.Decimals(), gross - net.Decimals()});
  }
  const Known &cartao = f("CARTAO"), &parcelas = f("TOTAL_PARCELA"), &valor = f("VALOR_PARCELA"),
              &rate = f("TAXA");
  if (kind == 0) {
    const std::string number =
        std::to_string(std::max(parcela.Whole(0), 1)) + "/" + std::to_string(std::max(parcelas.Whole(0), 1));
    const std::string_view status = Trim(f("STATUS").text);
    const char* const code = status == "Pago" ? "01" : status == "Agendado" ? "00" : "";
    return Row({cartao.text, "", proof.text, number, "03", code, status, f("EMPRESA").text, ""},
               day.day.empty() ? kNow : day.day,
               {valor.Thousands() * parcelas.Whole(1), valor.Thousands(), 0, net.Thousands(),
                rate.Thousands().Abs()});
  }
  const std::string key = f("NR_AUTORIZACAO").text + "/" + proof.text;
  if (Trim(key) == "/") return "";
  if (kind == 2) {
    std::string number = parcela.text;
    if (number.find(' ') != std::string::npos) number.erase(number.find(' '), 1);
    return Row({cartao.text, "", key, number, "", "", "", "", ""}, day.DayOr(kNow),
               {f("VALOR_TOTAL").Thousands(), valor.Thousands(), 0, 0, 0});
  }
  before = day.iso.empty() ? day.DayOr(before) : day.iso;
  return Row({cartao.text, "", key, parcela.text + "/" + parcelas.text, "", "", "", "", ""}, before,
             {f("VALOR_TOTAL").Decimals(), valor.Decimals(), 0, net.Decimals(), rate.Decimals().Abs()});
}

TEST(CardReadersTest, RandomSeparatedFilesReadAsTheyWereMade) {
  for (unsigned seed = 0; seed < 400; ++seed) {
    Random random{std::mt19937(seed)};
    const int kind = static_cast<int>(seed % 4);
    // What has no column is read from the first one.
    ColumnMap map = Columns(
        "VALOR_TOTAL VALOR_PARCELA VALOR_BRU VALOR_LIQ TAXA DATA NR_AUTORIZACAO NR_COMPROVANTE CARTAO "
        "NR_PARCELA TOTAL_PARCELA STATUS EMPRESA MEIO_PAG ID");
    std::erase_if(map.campos, [&](const auto&) { return random.Below(12) == 0; });
    if (kind >= 2) map.separador = random.Of({";", "::", "|", "; "}), map.linha = 1 + random.Below(3);
    std::string text, expected, before;
    for (int number = 1; number <= 12; ++number) {
      std::vector<Known> pieces;
      for (int i = 0; i < 15; ++i) {
        pieces.emplace_back(random.Of(kPieces));
        text += (i == 0 ? "" : map.separador) + pieces.back().text;
      }
      text += "\r\n";
      const auto field = [&](const char* campo) -> const Known& {
        return pieces[map.campos.contains(campo) ? static_cast<std::size_t>(map.campos.at(campo) - 1) : 0];
      };
      if (number >= (kind == 0 ? 2 : kind == 1 ? 5 : map.linha)) expected += KnownLine(kind, field, before);
    }
    EXPECT_EQ(Told([&](CardSink& s) {
                if (kind == 0) ReadCieloCsv(text, map, kToday, s);
                if (kind == 1) ReadCieloOrders(text, &map, kToday, s);
                if (kind == 2) ReadSeparatedSales(text, map, kToday, s);
                if (kind == 3) ReadSeparatedPayments(text, map, s);
              }),
              expected)
        << "seed " << seed << "\n"
        << text;
  }
}

TEST(CardReadersTest, RandomRecordsReadAsTheyWereMade) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    Random random{std::mt19937(seed)};
    const bool payments = seed % 2 == 1;
    std::string text = std::string(47, '0') + (payments ? "04" : "03") + "\n", expected, store, day;
    int64_t rate = 0;
    for (int number = 1; number < 20; ++number) {
      // A letter of two bytes counts as one column.
      std::vector<std::string> record(250, random.Of({"Ç", " "}));
      const auto put = [&](std::size_t column, const std::string& what) {
        for (const char c : what) record[column++ - 1] = c;
        return what;
      };
      const bool batch = random.Below(4) == 0;
      put(1, batch ? "1" : "2");
      if (batch == payments) {
        const std::string date = put(batch ? 38 : 40, random.Of({"261118", "260230", "2611 8"}));
        day = date == "261118" ? "2026-11-18 00:00:00" : "";
      }
      if (batch) {
        store = put(2, random.Digits(11)), rate = std::stoll(put(210, random.Digits(4)));
        put(123, "44");
      } else {
        const Currency amount = Currency::FromCents(std::stoll(put(47, random.Digits(13))));
        Currency total = Currency::FromCents(std::stoll(put(114, random.Digits(13))));
        const std::string proof = put(93, random.Digits(6));
        int first = std::stoi(put(60, random.Digits(2))), count = std::stoi(put(62, random.Digits(2)));
        if (first + count == 0) first = count = 1;
        if (total.IsZero()) total = count > 0 ? amount * count : amount;
        const Currency net = Currency::FromCents((amount.Cents() * (10000 - rate) + 5000) / 10000);
        const std::string parcela = std::to_string(first) + "/" + std::to_string(count);
        const std::string status = store.empty() ? "" : "44", brand = store.empty() ? "" : "Visa";
        expected += Row({brand, "", proof, parcela, payments ? "04" : "03", status, "", store, ""}, day,
                        {total, amount, 0, net, Currency::FromCents(rate)});
      }
      text += Join(record, "") + "\n";
    }
    EXPECT_EQ(Told([&](CardSink& s) { ReadCieloEdi(text, payments ? "04" : "03", s); }), expected) << seed;
  }
}

TEST(CardReadersTest, RandomSheetsReadAsTheirCellsAreKnown) {
  const std::vector<std::string> campos = Split(
      "DATA ID NR_COMPROVANTE NR_PARCELA MEIO_PAG VALOR_BRU TAXA VALOR_LIQ VAL_EST_BRU VAL_EST_LIQ", " ");
  for (unsigned seed = 0; seed < 300; ++seed) {
    Random random{std::mt19937(seed)};
    // Each in turn: Pagar.me by a map, by its own columns, Yapay by its own.
    const int kind = static_cast<int>(seed % 3);
    std::array<int, 10> at =
        kind == 1 ? std::array{1, 3, 5, 6, 7, 8, 12, 13, 9, 14} : std::array{1, 5, 3, 11, 4, 0, 0, 6, 0, 0};
    ColumnMap map;
    for (std::size_t i = 0; kind == 0 && i < at.size(); ++i) {
      at[i] = 1 + random.Below(16);
      if (at[i] > 1) map.campos[campos[i]] = at[i];
    }
    Lines stone, orders;
    StoneSheet stone_sheet(stone);
    PagarMeSheet pagarme(orders, kind == 0 ? &map : nullptr, kToday);
    YapaySheet yapay(orders, nullptr, kToday);
    std::string stone_read, orders_read, proof, day;
    Currency total;
    for (int number = 1, ended = 0; number <= 12; ++number) {
      std::vector<SheetCell> cells;
      std::vector<Known> known(17);
      for (std::size_t column = 1; column <= 14; ++column) {
        const auto& [meaning, cell] = kCells[random.Below(std::size(kCells))];
        known[column] = Known(meaning);
        cells.push_back(cell);
      }
      const auto of = [&](int column) -> const Known& { return known[static_cast<std::size_t>(column)]; };
      const SheetRow row(number, cells);
      EXPECT_TRUE(kind == 2 ? yapay.Row(row) : pagarme.Row(row));
      ended += ended > 0 || (number > 1 && of(2).text.empty());
      EXPECT_EQ(ended > 1 || stone_sheet.Row(row), ended != 1);
      if (number == 1) continue;
      const Known &key = of(at[2]), &parcela = of(at[3]), &when = of(at[0]);
      if (!key.text.empty() && key.text != " - ") {
        const bool back = kind < 2 && of(at[7]).Decimals().IsZero();
        const Currency rate = of(at[6]).Decimals();
        orders_read += Row({"", of(at[4]).text, key.text, parcela.Whole(0) == 0 ? "1" : parcela.text, "", "",
                            "", "", of(at[1]).text},
                           when.day.empty() ? kNow : when.day.substr(0, 10) + " 00:00:00",
                           {0, 0, of(at[back ? 8 : 5]).Decimals(), of(at[back ? 9 : 7]).Decimals(),
                            back ? -rate : rate.Abs()});
      }
      if (ended > 0) continue;
      if (!of(3).text.empty())
        day = of(5).day, proof = of(11).text, total = of(14).Thousands() * of(9).Whole(0);
      stone_read +=
          Row({of(10).text + " " + of(7).text, "", proof, of(8).text + "/" + of(9).text, "", "", "", "", ""},
              day, {total, of(14).Thousands(), 0, 0, 0});
    }
    EXPECT_EQ(stone.text, stone_read) << seed;
    EXPECT_EQ(orders.text, orders_read) << seed;
  }
}

}  // namespace
}  // namespace orv::test
