#include "reconciliation/formats/card_sheets.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "reconciliation/formats/card_values.h"
#include "reconciliation/formats/statement.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr int kFirstRow = 2;
// The last column that a sheet can have, XFD.
constexpr int kMostColumns = 16384;

constexpr const char* kNames[] = {"DATA",      "ID",   "NR_COMPROVANTE", "NR_PARCELA",  "MEIO_PAG",
                                  "VALOR_BRU", "TAXA", "VALOR_LIQ",      "VAL_EST_BRU", "VAL_EST_LIQ"};

bool Blank(const SheetCell& cell) { return Trim(cell.text).empty(); }

// A number counts as it is stored, a text as a person wrote it; a day or an answer is no amount.
Currency CellAmount(const SheetCell& cell, unsigned marks) {
  if (cell.kind == SheetKind::Text) return CardAmount(cell.text, marks);
  if (cell.kind != SheetKind::Number || !(std::fabs(cell.number) <= kMaxLineAmount.ToDouble())) return {};
  return Currency::FromDouble(cell.number);
}

// The zero of DateTime for what is no day; a number that isn't shown as one is none either.
DateTime CellMoment(const SheetCell& cell) {
  if (cell.kind == SheetKind::Date) return CountsAsDay(cell.time) ? cell.time : DateTime();
  return cell.kind == SheetKind::Text ? CardMoment(cell.text) : DateTime();
}

// A day written in the first ten characters.
DateTime CellDay(const SheetCell& cell) {
  if (cell.kind == SheetKind::Text) return CardDay(CutChars(cell.text, 10));
  const DateTime moment = CellMoment(cell);
  return moment == DateTime() ? moment : DateTime(moment.Day(), 0, 0, 0);
}

}  // namespace

std::string_view CellText::operator()(const SheetCell& cell) {
  if (cell.kind == SheetKind::Date && CountsAsDay(cell.time)) {
    made_ = cell.time.Brazil();
    if (cell.time == DateTime(cell.time.Day(), 0, 0, 0)) made_ = cell.time.Day().Brazil();
    return made_;
  }
  if (cell.kind != SheetKind::Number || !std::isfinite(cell.number)) return cell.text;
  // A transaction's number keeps all its digits; other numbers have as many as a sheet keeps.
  constexpr double kMostDigits = 1e18;
  const bool whole = std::fabs(cell.number) < kMostDigits && std::trunc(cell.number) == cell.number;
  char buffer[40];
  char* const end =
      whole ? std::to_chars(buffer, std::end(buffer), static_cast<int64_t>(cell.number)).ptr
            : std::to_chars(buffer, std::end(buffer), cell.number, std::chars_format::general, 15).ptr;
  std::replace(buffer, end, '.', ',');
  made_.assign(buffer, end);
  return made_;
}

bool StoneSheet::Row(const SheetRow& row) {
  if (row.Number() < kFirstRow) return true;
  if (Blank(row.Cell(2))) return false;
  line_.valor_parcela = CellAmount(row.Cell(14), kNoPoint);
  if (!Blank(row.Cell(3))) {
    line_.data = CellMoment(row.Cell(5));
    comprovante_ = text_(row.Cell(11));
    line_.valor_total = Currency::FromRaw(line_.valor_parcela.Raw() * CardInteger(text_(row.Cell(9)), 0));
  }
  line_.comprovante = comprovante_;
  cartao_ = text_(row.Cell(10));
  cartao_ += ' ';
  cartao_ += text_(row.Cell(7));
  line_.cartao = cartao_;
  parcela_ = text_(row.Cell(8));
  parcela_ += '/';
  parcela_ += text_(row.Cell(9));
  line_.parcela = parcela_;
  lines_.Line(line_);
  return true;
}

OrderSheet::Columns OrderSheet::Mapped(const ColumnMap* map, Columns columns, Campo end) {
  if (map == nullptr) return columns;
  for (std::size_t campo = 0; campo < end; ++campo) {
    columns[campo] = map->PosCampo(kNames[campo], true);
    if (columns[campo] >= 1 && columns[campo] <= kMostColumns) continue;
    throw UserError("O layout do banco põe " + std::string(kNames[campo]) + " na coluna " +
                    std::to_string(columns[campo]) + ", que nenhuma planilha tem: corrija-o.");
  }
  return columns;
}

bool OrderSheet::Row(const SheetRow& row) {
  if (row.Number() < kFirstRow) return true;
  const auto cell = [&](Campo campo) -> const SheetCell& { return row.Cell(columns_[campo]); };
  CardLine line;
  line.comprovante = comprovante_(cell(kComprovante));
  const std::string_view proof = Trim(line.comprovante);
  if (proof.empty() || proof == "-") return true;
  line.meio_pag = meio_(cell(kMeio));
  line.data = CellDay(cell(kData));
  if (line.data == DateTime()) line.data = today_;
  line.parcela = parcela_(cell(kParcela));
  if (CardInteger(line.parcela, 0) == 0) line.parcela = "1";
  const Currency taxa = CellAmount(cell(kTaxa), kPlainAmount);
  line.valor_bruto = CellAmount(cell(kBruto), kPlainAmount);
  line.valor_liq = CellAmount(cell(kLiq), kPlainAmount);
  line.taxa = taxa.Abs();
  if (line.valor_liq.IsZero() && columns_[kEstLiq] > 0) {
    line.valor_bruto = CellAmount(cell(kEstBruto), kPlainAmount);
    line.valor_liq = CellAmount(cell(kEstLiq), kPlainAmount);
    line.taxa = -taxa;
  }
  line.id = id_(cell(kId));
  lines_.Line(line);
  return true;
}

PagarMeSheet::PagarMeSheet(CardSink& lines, const ColumnMap* map, Date today)
    : OrderSheet(lines, today, Mapped(map, {1, 3, 5, 6, 7, 8, 12, 13, 9, 14}, kCampos)) {}

YapaySheet::YapaySheet(CardSink& lines, const ColumnMap* map, Date today)
    : OrderSheet(lines, today, Mapped(map, {1, 5, 3, 11, 4, 0, 0, 6, 0, 0}, kEstBruto)) {}

}  // namespace orv
