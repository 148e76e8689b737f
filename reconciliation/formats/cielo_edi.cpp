// Cielo's electronic statement, layout of 250 characters a record: a header, a header for each batch of
// sales, and the sales.
#include <string>
#include <utility>

#include "reconciliation/formats/card_file.h"
#include "reconciliation/formats/card_values.h"
#include "reconciliation/formats/outside_file.h"
#include "toolkit/error.h"

namespace orv {
namespace {

// Brand codes of Cielo's layout.
constexpr std::pair<int, std::string_view> kBandeiras[] = {
    {1, "Visa"},   {2, "Mastercard"},  {3, "Amex"},       {6, "Sorocred"},
    {7, "Elo"},    {9, "Diners"},      {11, "Agiplan"},   {15, "Banescard"},
    {23, "Cabal"}, {29, "Credsystem"}, {35, "Esplanada"}, {40, "Hipercard"},
    {60, "Jcb"},   {64, "Credz"},      {72, "Hiper"},     {75, "Ourocard"}};

std::string_view Bandeira(int codigo) {
  for (const auto& [known, nome] : kBandeiras) {
    if (known == codigo) return nome;
  }
  return "";
}

bool Digits(std::string_view text, std::size_t width) {
  return text.size() == width && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// YYMMDD of this century; the zero of DateTime for what is no such day.
DateTime ShortDay(std::string_view text) {
  if (!Digits(text, 6)) return {};
  std::string day(text.substr(4, 2));
  day.append("/").append(text.substr(2, 2)).append("/20").append(text.substr(0, 2));
  return CardDay(day);
}

class Reader {
 public:
  Reader(std::string_view tipo, CardSink& lines) : tipo_(tipo), lines_(lines) {}

  void Line(std::string_view text, std::size_t number) {
    if (text.empty()) return;
    const CharColumns record(text);
    if (text.front() == '0') Header(record);
    if (text.front() == '1') Batch(record);
    if (text.front() == '2') Detail(record, number);
  }

 private:
  void Header(const CharColumns& record) {
    const std::string_view tipo = record.At(48, 49);
    if ((tipo == "03" || tipo == "04") && tipo != tipo_)
      throw WrongCardFile("Tipo do arquivo inválido para opção selecionada.");
    line_.tipo_arquivo = tipo;
  }

  void Batch(const CharColumns& record) {
    line_.empresa = record.At(2, 12);
    if (line_.tipo_arquivo == "04") line_.data = ShortDay(record.At(38, 43));
    line_.status = record.At(123, 124);
    line_.desc_status = CieloStatus(line_.status);
    line_.cartao = Bandeira(CardInteger(record.At(185, 187), 1));
    line_.taxa = CardDigits(record.At(210, 213), 4);
  }

  void Detail(const CharColumns& record, std::size_t number) {
    if (line_.tipo_arquivo == "03") line_.data = ShortDay(record.At(40, 45));
    int parcela = TwoDigits(record, 60, "o número da parcela", number);
    int total = TwoDigits(record, 62, "o número de parcelas", number);
    if (parcela == 0 && total == 0) parcela = total = 1;
    parcela_ = std::to_string(parcela);
    parcela_ += '/';
    parcela_ += std::to_string(total);
    line_.parcela = parcela_;

    const Currency valor = CardDigits(record.At(47, 59), 13);
    line_.valor_parcela = valor;
    // The rate is a percentage: both have four decimals, and a hundredth of it counts.
    constexpr Int128 kWhole = Int128{100} * Currency::kScale;
    const Int128 net = valor.Raw() * (kWhole - line_.taxa.Raw());
    line_.valor_liq = Currency::FromRaw(RoundedQuotient(net, kWhole * 100) * 100);
    line_.valor_total = CardDigits(record.At(114, 126), 13);
    if (line_.valor_total.IsZero()) line_.valor_total = Currency::FromRaw(valor.Raw() * total);
    if (line_.valor_total.IsZero()) line_.valor_total = valor;
    line_.comprovante = record.At(93, 98);
    lines_.Line(line_);
  }

  static int TwoDigits(const CharColumns& record, std::size_t column, const char* what, std::size_t number) {
    const std::string_view text = record.At(column, column + 1);
    if (Digits(text, 2)) return (text[0] - '0') * 10 + text[1] - '0';
    throw UserError("Linha " + std::to_string(number) + " do arquivo: " + what + ", nas colunas " +
                    std::to_string(column) + " e " + std::to_string(column + 1) + ", é \"" +
                    std::string(text) + "\". Eram esperados dois dígitos: confira o arquivo.");
  }

  std::string_view tipo_;
  CardSink& lines_;
  // What the records tell holds for those after them.
  CardLine line_;
  std::string parcela_;
};

}  // namespace

void ReadCieloEdi(std::string_view text, std::string_view tipo, CardSink& lines) {
  Reader reader(tipo, lines);
  TextLines rest(text);
  for (std::string_view line; rest.Next(line);) reader.Line(line, rest.Number());
}

}  // namespace orv
