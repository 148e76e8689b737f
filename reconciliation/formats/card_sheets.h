// The spreadsheets of card acquirers, row by row as the book's reader hands them on.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "frame/sheet.h"
#include "reconciliation/formats/card_file.h"

namespace orv {

class CardSheet : public SheetSink {
 public:
  explicit CardSheet(CardSink& lines) : lines_(lines) {}
  void TakeBack() noexcept override { lines_.TakeBack(); }

 protected:
  CardSink& lines_;
};

// A cell as text: a number by its value, whatever its format, a day as "dd/mm/yyyy" and with its time if it
// has one, anything else as it is shown. Holds until the next cell, and as long as the row.
class CellText {
 public:
  std::string_view operator()(const SheetCell& cell);

 private:
  std::string made_;
};

// Sales. The first blank cell of column 2 ends them; a row with a blank column 3 is a further instalment of
// the transaction above it.
class StoneSheet : public CardSheet {
 public:
  using CardSheet::CardSheet;
  bool Row(const SheetRow& row) override;

 private:
  CellText text_;
  std::string cartao_, parcela_, comprovante_;
  // Further instalments have the day, the transaction and the total of the row above them.
  CardLine line_;
};

// What the sheets of orders share. `map` counts columns from 1; null stands for the acquirer's own columns. A
// map that asks for a column which no sheet has is refused: UserError.
class OrderSheet : public CardSheet {
 public:
  bool Row(const SheetRow& row) override;

 protected:
  enum Campo { kData, kId, kComprovante, kParcela, kMeio, kBruto, kTaxa, kLiq, kEstBruto, kEstLiq, kCampos };
  // 0 for a field that the acquirer doesn't have.
  using Columns = std::array<int, kCampos>;

  OrderSheet(CardSink& lines, Date today, const Columns& columns)
      : CardSheet(lines), today_(today, 0, 0, 0), columns_(columns) {}
  // Where the map has the fields before `end`, the others stay.
  static Columns Mapped(const ColumnMap* map, Columns columns, Campo end);

 private:
  DateTime today_;
  Columns columns_;
  CellText meio_, comprovante_, parcela_, id_;
};

// Orders. A row with a net of exactly 0 is a reversal, with amounts in columns of its own.
class PagarMeSheet : public OrderSheet {
 public:
  PagarMeSheet(CardSink& lines, const ColumnMap* map, Date today);
};

// Orders. Gross and fee are 0 without a map.
class YapaySheet : public OrderSheet {
 public:
  YapaySheet(CardSink& lines, const ColumnMap* map, Date today);
};

}  // namespace orv
