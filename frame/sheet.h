// Spreadsheets as a screen reads them: the rows of the book's first visible tab, each cell as value and as
// shown.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "toolkit/date.h"
#include "toolkit/input_file.h"

namespace orv {

enum class SheetKind : uint8_t { Empty, Text, Number, Date, Bool, Error };

struct SheetCell {
  SheetKind kind = SheetKind::Empty;
  // Of a number and of a date, which is a count of days; 0 or 1 of a Bool.
  double number = 0;
  // Of a date. A time without a day lies on 1899-12-30.
  DateTime time;
  // As the cell's number format shows it, in the Brazilian form, without the blanks that only align:
  // "1.234,56", "23/11/2026", "VERDADEIRO", "#N/D". A formula is shown by the result that the book keeps.
  std::string_view text;
};

// Holds for as long as the sink that takes it works on it.
class SheetRow {
 public:
  // `number` counts from 1.
  SheetRow(int number, std::span<const SheetCell> cells) : number_(number), cells_(cells) {}

  int Number() const { return number_; }
  // The last column that holds something, 0 in an empty row.
  int Columns() const { return static_cast<int>(cells_.size()); }
  // Columns count from 1. An empty cell for any that the row doesn't have.
  const SheetCell& Cell(int column) const {
    static const SheetCell empty;
    return column >= 1 && column <= Columns() ? cells_[static_cast<std::size_t>(column) - 1] : empty;
  }
  std::string_view Text(int column) const { return Cell(column).text; }

 private:
  int number_;
  std::span<const SheetCell> cells_;
};

class SheetSink {
 public:
  virtual ~SheetSink() = default;
  // The rows from 1 to the last one that holds something, without gaps: one that the book leaves out is
  // empty. False ends the reading.
  virtual bool Row(const SheetRow& row) = 0;
  // An exception ends the reading: the rows that came don't count. A file may turn out broken at its end.
  virtual void TakeBack() noexcept = 0;
};

// What the host lends to screens for it. Raises UserError for what isn't a spreadsheet (.xlsx), for a damaged
// or protected one and for one beyond all measure.
class ISheets {
 public:
  virtual ~ISheets() = default;
  virtual void Read(const InputFile& file, SheetSink& rows) = 0;
  virtual void Read(std::string_view bytes, SheetSink& rows) = 0;
};

}  // namespace orv
