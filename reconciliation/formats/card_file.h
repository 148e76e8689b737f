// The files of card acquirers, as lines: sales, payments and orders.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "toolkit/currency.h"
#include "toolkit/date.h"

namespace orv {

// A line of an acquirer's file; each kind of file fills its own part. Texts hold for as long as the sink
// works on the line.
struct CardLine {
  // The card's brand, or the means of payment of an order.
  std::string_view cartao, meio_pag;
  // The transaction: the key by which it is matched.
  std::string_view comprovante;
  std::string_view parcela;
  // "03" sales, "04" payments; a payment's status by its code and as it is told.
  std::string_view tipo_arquivo, status, desc_status;
  std::string_view empresa;
  // The acquirer's operation.
  std::string_view id;
  // The zero of DateTime where the file has none.
  DateTime data;
  Currency valor_total, valor_parcela, valor_bruto, valor_liq;
  // A percentage in sales and payments; of orders the fee in money.
  Currency taxa;
};

class CardSink {
 public:
  virtual ~CardSink() = default;
  virtual void Line(const CardLine& line) = 0;
  // A spreadsheet turned out broken: the lines that came don't count.
  virtual void TakeBack() noexcept = 0;
};

// In which column an acquirer's file has its fields, from the rows of POSICAO that a bank has for cards.
struct ColumnMap {
  // Of the row that was read first.
  std::string separador;
  // The first line of data, from 1.
  int linha = 0;
  // By CAMPO, INICIO of the first row of that name.
  std::unordered_map<std::string, int> campos;

  bool Empty() const { return campos.empty(); }
  // The column of a field: counted from 1, and 1 without a row; or from 0, and 0 without a row.
  int PosCampo(const std::string& campo, bool base1) const;
};

// The readers of text take UTF-8 (OutsideText), spreadsheets come by the sinks of card_sheets.h. A UserError
// ends a reading, such as for a line that hasn't as many columns as the map asks for; of a text the lines
// that came before it stand. An amount that isn't one is 0, a day that isn't one is today, or none.

// Cielo's fixed columns, in characters. `tipo` is the kind of file that is expected, "03" or "04": another
// one of the two is refused.
void ReadCieloEdi(std::string_view text, std::string_view tipo, CardSink& lines);
void ReadCieloCsv(std::string_view text, const ColumnMap& map, Date today, CardSink& lines);
// Null stands for no map.
void ReadCieloOrders(std::string_view text, const ColumnMap* map, Date today, CardSink& lines);
// Getnet's and Rede's separated files. A payment's `parcela` is "number/count".
void ReadSeparatedSales(std::string_view text, const ColumnMap& map, Date today, CardSink& lines);
void ReadSeparatedPayments(std::string_view text, const ColumnMap& map, CardSink& lines);

}  // namespace orv
