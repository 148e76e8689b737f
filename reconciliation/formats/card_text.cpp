// Acquirers' separated files: Cielo's sales and orders, Getnet's and Rede's sales and payments.
#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <vector>

#include "reconciliation/formats/card_file.h"
#include "reconciliation/formats/card_values.h"
#include "reconciliation/formats/outside_file.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// A field and its column, from 0.
struct Place {
  const char* campo;
  int coluna;
};

// The fields of one line after the other. A quote is a character like any other; without a separator the
// whole line is one column.
class Fields {
 public:
  Fields(std::string_view text, std::string_view separador, std::vector<Place> places)
      : rest_(text), separador_(separador), places_(std::move(places)), texts_(places_.size()) {
    for (std::size_t i = 0; i < places_.size(); ++i) order_.push_back(i);
    std::sort(order_.begin(), order_.end(),
              [&](std::size_t a, std::size_t b) { return Column(places_[a]) < Column(places_[b]); });
  }

  // The next line that isn't blank; false at the end. Keeps no more of a line than its fields, however many
  // columns it has.
  bool Next() {
    std::string_view line;
    do {
      if (!rest_.Next(line)) return false;
    } while (Trim(line).empty());
    std::size_t end = End(line);
    columns_ = 0;
    for (const std::size_t field : order_) {
      for (; columns_ < Column(places_[field]) && end != std::string_view::npos; ++columns_) {
        line.remove_prefix(end + separador_.size());
        end = End(line);
      }
      texts_[field] = line.substr(0, end);
    }
    ++columns_;
    return true;
  }
  // Passes over lines up to the one of this number, from 1.
  void StartAt(int number) {
    std::string_view line;
    while (rest_.Number() + 1 < static_cast<std::size_t>(number) && rest_.Next(line)) {
    }
  }

  // Raises UserError where the line doesn't reach as far.
  std::string_view operator[](std::size_t field) const {
    const Place& place = places_[field];
    if (Column(place) < columns_) return texts_[field];
    const std::string column = std::to_string(int64_t{place.coluna} + 1);
    throw UserError("Linha " + std::to_string(rest_.Number()) + " do arquivo: não há a coluna " + column +
                    ", onde o layout do banco põe " + place.campo + ". A linha tem " +
                    std::to_string(columns_) + (columns_ == 1 ? " coluna" : " colunas") +
                    ": confira o arquivo, o separador e o layout.");
  }

 private:
  // A column before the first is one that no line has.
  static std::size_t Column(const Place& place) {
    return place.coluna < 0 ? std::numeric_limits<std::size_t>::max()
                            : static_cast<std::size_t>(place.coluna);
  }
  std::size_t End(std::string_view line) const {
    if (separador_.size() == 1) return line.find(separador_.front());
    return separador_.empty() ? std::string_view::npos : line.find(separador_);
  }

  TextLines rest_;
  std::string_view separador_;
  std::vector<Place> places_;
  // The fields in the order of their columns.
  std::vector<std::size_t> order_;
  std::vector<std::string_view> texts_;
  // Of the latest line, as far as it was looked at.
  std::size_t columns_ = 0;
};

// Where the map has the fields.
std::vector<Place> Places(const ColumnMap& map, std::initializer_list<const char*> campos) {
  std::vector<Place> places;
  for (const char* campo : campos) places.push_back({campo, map.PosCampo(campo, false)});
  return places;
}

DateTime Or(DateTime time, DateTime otherwise) { return time == DateTime() ? otherwise : time; }

// Getnet's and Rede's transaction is "authorization/proof". False for a line without either.
bool TakeKey(const Fields& fields, std::size_t autorizacao, std::size_t comprovante, std::string& key) {
  key = fields[autorizacao];
  key += '/';
  key += fields[comprovante];
  return Trim(key) != "/";
}

// Files of these two begin where the map says.
Fields Separated(std::string_view text, const ColumnMap& map, std::initializer_list<const char*> campos) {
  if (map.Empty()) throw UserError("O banco não tem layout de arquivo de cartões. Cadastre-o antes.");
  if (map.linha < 1) {
    throw UserError("A primeira linha de dados, no layout do banco, é " + std::to_string(map.linha) +
                    ": informe 1 ou mais.");
  }
  Fields fields(text, map.separador, Places(map, campos));
  fields.StartAt(map.linha);
  return fields;
}

// The first ten characters as year, month and day, whatever parts them, or the whole text as a day.
DateTime PaymentDay(std::string_view text) {
  const CharColumns columns(text);
  std::string day(columns.At(9, 10));
  day.append("/").append(columns.At(6, 7)).append("/").append(columns.At(1, 4));
  const DateTime read = CardDay(day);
  return read == DateTime() ? CardDay(text) : read;
}

}  // namespace

void ReadCieloCsv(std::string_view text, const ColumnMap& map, Date today, CardSink& lines) {
  enum { kNrParcela, kTotal, kCartao, kData, kComprovante, kValor, kLiq, kStatus, kTaxa, kEmpresa };
  Fields fields(text, ";",
                Places(map, {"NR_PARCELA", "TOTAL_PARCELA", "CARTAO", "DATA", "NR_COMPROVANTE",
                             "VALOR_PARCELA", "VALOR_LIQ", "STATUS", "TAXA", "EMPRESA"}));
  fields.StartAt(2);
  const DateTime now(today, 0, 0, 0);
  std::string parcela;
  CardLine line;
  line.tipo_arquivo = "03";
  while (fields.Next()) {
    const std::string_view total = fields[kTotal];
    parcela = std::to_string(std::max(CardInteger(fields[kNrParcela], 0), 1));
    parcela += '/';
    parcela += std::to_string(std::max(CardInteger(total, 0), 1));
    line.parcela = parcela;
    line.cartao = fields[kCartao];
    line.data = Or(CardMoment(fields[kData]), now);
    line.comprovante = fields[kComprovante];
    line.valor_parcela = CardAmount(fields[kValor], kNoReais | kNoPoint);
    line.valor_liq = CardAmount(fields[kLiq], kNoReais | kNoPoint);
    line.desc_status = Trim(fields[kStatus]);
    line.status = CieloStatusCode(line.desc_status);
    line.taxa = CardAmount(fields[kTaxa], kNoReais | kNoPoint | kNoMinus);
    line.empresa = fields[kEmpresa];
    line.valor_total = Currency::FromRaw(line.valor_parcela.Raw() * CardInteger(total, 1));
    lines.Line(line);
  }
}

void ReadCieloOrders(std::string_view text, const ColumnMap* map, Date today, CardSink& lines) {
  enum { kMeio, kData, kParcela, kComprovante, kBruto, kLiq, kId };
  std::vector<Place> places = {
      {"MEIO_PAG", 1},   {"DATA", 6},       {"NR_PARCELA", 9}, {"NR_COMPROVANTE", 13},
      {"VALOR_BRU", 15}, {"VALOR_LIQ", 16}, {"ID", 20}};
  for (Place& place : places) {
    if (map != nullptr) place.coluna = map->PosCampo(place.campo, false);
  }
  Fields fields(text, ";", std::move(places));
  // Four lines of heading.
  fields.StartAt(5);
  const DateTime now(today, 0, 0, 0);
  CardLine line;
  while (fields.Next()) {
    line.comprovante = fields[kComprovante];
    if (Trim(line.comprovante).empty()) continue;
    line.meio_pag = fields[kMeio];
    line.data = Or(CardDay(fields[kData]), now);
    line.parcela = CardInteger(fields[kParcela], 0) == 0 ? "1" : fields[kParcela];
    line.valor_bruto = CardAmount(fields[kBruto], kNoReais | kPointIsComma);
    line.valor_liq = CardAmount(fields[kLiq], kNoReais | kPointIsComma);
    line.taxa = line.valor_bruto - line.valor_liq;
    line.id = fields[kId];
    lines.Line(line);
  }
}

void ReadSeparatedSales(std::string_view text, const ColumnMap& map, Date today, CardSink& lines) {
  enum { kAutorizacao, kComprovante, kData, kTotal, kCartao, kValor, kParcela };
  Fields fields = Separated(
      text, map,
      {"NR_AUTORIZACAO", "NR_COMPROVANTE", "DATA", "VALOR_TOTAL", "CARTAO", "VALOR_PARCELA", "NR_PARCELA"});
  const DateTime now(today, 0, 0, 0);
  std::string key, parcela;
  CardLine line;
  while (fields.Next()) {
    if (!TakeKey(fields, kAutorizacao, kComprovante, key)) continue;
    line.comprovante = key;
    line.data = Or(CardDay(fields[kData]), now);
    line.valor_total = CardAmount(fields[kTotal], kNoReais | kNoPoint);
    line.cartao = fields[kCartao];
    line.valor_parcela = CardAmount(fields[kValor], kNoReais | kNoPoint);
    parcela = fields[kParcela];
    if (const std::size_t blank = parcela.find(' '); blank != std::string::npos) parcela.erase(blank, 1);
    line.parcela = parcela;
    lines.Line(line);
  }
}

void ReadSeparatedPayments(std::string_view text, const ColumnMap& map, CardSink& lines) {
  enum { kAutorizacao, kComprovante, kTotal, kCartao, kValor, kLiq, kTaxa, kParcela, kParcelas, kData };
  Fields fields = Separated(text, map,
                            {"NR_AUTORIZACAO", "NR_COMPROVANTE", "VALOR_TOTAL", "CARTAO", "VALOR_PARCELA",
                             "VALOR_LIQ", "TAXA", "NR_PARCELA", "TOTAL_PARCELA", "DATA"});
  std::string key, parcela;
  CardLine line;
  while (fields.Next()) {
    if (!TakeKey(fields, kAutorizacao, kComprovante, key)) continue;
    line.comprovante = key;
    line.valor_total = CardAmount(fields[kTotal], kNoReais | kPointIsComma);
    line.cartao = fields[kCartao];
    line.valor_parcela = CardAmount(fields[kValor], kNoReais | kPointIsComma);
    line.valor_liq = CardAmount(fields[kLiq], kNoReais | kPointIsComma);
    line.taxa = CardAmount(fields[kTaxa], kNoReais | kPointIsComma | kNoMinus);
    parcela = fields[kParcela];
    parcela += '/';
    parcela += fields[kParcelas];
    line.parcela = parcela;
    // A line without a day has that of the line before it.
    line.data = Or(PaymentDay(fields[kData]), line.data);
    lines.Line(line);
  }
}

}  // namespace orv
