#include "host/sheet/sheet_reader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "host/sheet/archive.h"
#include "host/sheet/book.h"
#include "host/sheet/faults.h"
#include "host/sheet/xml.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr int kMostRows = 1'048'576, kMostColumns = 1024;
// What is shown in one row, and what a single number or date adds at most.
constexpr std::size_t kMostRowText = std::size_t{1} << 20, kMostShown = std::size_t{64} << 10;

// Ends the parser's work when the sink has enough.
struct Enough {};

// Excel's names of faults and those that its users see.
constexpr std::pair<std::string_view, std::string_view> kErrors[] = {
    {"#N/A", "#N/D"},     {"#NAME?", "#NOME?"}, {"#VALUE!", "#VALOR!"},
    {"#NULL!", "#NULO!"}, {"#NUM!", "#NÚM!"},   {"#SPILL!", "#DESPEJAR!"},
};

std::optional<double> ParseNumber(std::string_view text) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ptr != end || result.ec == std::errc::invalid_argument || !std::isfinite(number))
    return std::nullopt;
  return number;
}

// "2026-11-23", "2026-11-23T14:05:00.25Z" or "14:05:00" as a sheet counts days from 1900 on.
std::optional<double> ParseIsoDays(std::string_view text) {
  double days = 0;
  if (text.ends_with('Z')) text.remove_suffix(1);
  if (text.size() >= 10 && text[4] == '-') {
    const auto year = WholeNumber(text.substr(0, 4)), month = WholeNumber(text.substr(5, 2)),
               day = WholeNumber(text.substr(8, 2));
    if (!year || !month || !day || text[7] != '-' || !Date::Exists(*year, *month, *day)) return std::nullopt;
    days = Date(*year, *month, *day) - Date::FromDays(Date::kZeroDays);
    if (days < 2) return std::nullopt;
    // As sheets count, which take 1900 for a leap year.
    if (days < 61) days -= 1;
    text.remove_prefix(10);
    if (text.empty()) return days;
    if (text[0] != 'T') return std::nullopt;
    text.remove_prefix(1);
  }
  if (text.size() < 8 || text[2] != ':' || text[5] != ':') return std::nullopt;
  const auto hour = WholeNumber(text.substr(0, 2)), minute = WholeNumber(text.substr(3, 2));
  const auto second = ParseNumber(text.substr(6));
  if (!hour || !minute || !second || *hour > 23 || *minute > 59 || *second < 0 || *second >= 60)
    return std::nullopt;
  return days + (*hour * 3600 + *minute * 60 + *second) / 86400;
}

// Column and row of "BC23"; 0 for one that isn't there, and beyond all bounds where it is.
struct Place {
  explicit Place(std::string_view text) {
    std::size_t at = 0;
    for (; at < text.size() && text[at] >= 'A' && text[at] <= 'Z'; ++at)
      column = std::min(column * 26 + (text[at] - 'A' + 1), 1 << 20);
    row = at > 0 ? WholeNumber(text.substr(at)).value_or(0) : 0;
  }
  int column = 0, row = 0;
};

class Cells : public XmlReader {
 public:
  Cells(const Book& book, SheetSink& sink) : book_(book), sink_(sink) {
    // The cells' texts are views of it.
    shown_.reserve(kMostRowText + kMostShown);
  }

 private:
  enum class Type : uint8_t { Number, Shared, Text, Bool, Error, Date };

  void Start(std::string_view name, const XmlAttributes& attributes) override {
    if (!inside_) {
      inside_ = name == "sheetData";
    } else if (name == "c") {
      BeginCell(attributes);
    } else if (name == "v") {
      gather_ = in_cell_;
    } else if (name == "t") {
      gather_ = in_cell_ && !phonetic_;
    } else if (name == "row") {
      BeginRow(attributes);
    } else if (name == "rPh") {
      phonetic_ = true;
    }
  }

  void End(std::string_view name) override {
    gather_ = false;
    if (name == "c") {
      if (in_cell_) EndCell();
    } else if (name == "row") {
      if (in_row_) EndRow();
    } else if (name == "rPh") {
      phonetic_ = false;
    } else if (name == "sheetData") {
      inside_ = false;
    }
  }

  void Text(std::string_view piece) override {
    if (!gather_) return;
    RequireCellText(text_.size() + piece.size());
    text_ += piece;
  }

  void BeginRow(const XmlAttributes& attributes) {
    const auto number = WholeNumber(attributes.Get("r"));
    in_row_ = true;
    // Some name the row in its cells alone.
    numbered_ = number.has_value();
    SetRow(number.value_or(row_ + 1), row_);
    column_ = 0;
    cells_.clear();
    shown_.clear();
  }

  void SetRow(int number, int before) {
    if (number <= before) throw UserError(kDamaged);
    if (number > kMostRows) {
      throw UserError("A planilha tem linhas demais: o limite é de 1.048.576.");
    }
    row_ = number;
  }

  void BeginCell(const XmlAttributes& attributes) {
    in_cell_ = in_row_;
    text_.clear();
    phonetic_ = false;
    const Place place(attributes.Get("r"));
    column_ = place.column > 0 ? place.column : column_ + 1;
    if (!numbered_ && in_row_ && place.row > 0) {
      numbered_ = true;
      SetRow(place.row, row_ - 1);
    }
    style_ = static_cast<std::size_t>(WholeNumber(attributes.Get("s")).value_or(0));
    const std::string_view type = attributes.Get("t");
    type_ = type.empty() || type == "n" ? Type::Number
            : type == "s"               ? Type::Shared
            : type == "b"               ? Type::Bool
            : type == "e"               ? Type::Error
            : type == "d"               ? Type::Date
                                        : Type::Text;
  }

  void EndCell() {
    in_cell_ = false;
    if (type_ == Type::Text) {
      if (!text_.empty()) SetText(text_, true);
      return;
    }
    const std::string_view text = Trim(text_);
    if (text.empty()) return;
    switch (type_) {
      case Type::Shared: {
        const auto i = WholeNumber(text);
        if (!i || static_cast<std::size_t>(*i) >= book_.texts.Size()) throw UserError(kDamaged);
        const std::string_view shared = book_.texts[static_cast<std::size_t>(*i)];
        if (!shared.empty()) SetText(shared, false);
        break;
      }
      case Type::Bool: {
        const bool on = text == "1" || text == "true";
        Put(SheetKind::Bool, on).text = on ? "VERDADEIRO" : "FALSO";
        break;
      }
      case Type::Error: {
        const auto* const known = std::find_if(std::begin(kErrors), std::end(kErrors),
                                               [&](const auto& e) { return e.first == text; });
        if (known != std::end(kErrors)) {
          Put(SheetKind::Error, 0).text = known->second;
        } else {
          Keep(Put(SheetKind::Error, 0), [&] { shown_ += text; });
        }
        break;
      }
      case Type::Date:
        if (const auto days = ParseIsoDays(text)) {
          static const NumberFormat day("dd/mm/yyyy"), time("dd/mm/yyyy hh:mm:ss");
          const NumberFormat& own = book_.Format(style_);
          SetTime(*days, false, own.ShowsTime() ? own : *days == std::floor(*days) ? day : time);
        } else {
          SetText(text, true);
        }
        break;
      default:
        if (const auto number = ParseNumber(text)) {
          SetNumber(*number);
        } else {
          SetText(text, true);
        }
    }
  }

  // The cell at which the reader stands.
  SheetCell& Put(SheetKind kind, double number) {
    if (column_ > kMostColumns) throw UserError("A planilha tem colunas demais: o limite é de 1.024.");
    const auto at = static_cast<std::size_t>(column_);
    if (cells_.size() < at) cells_.resize(at);
    SheetCell& cell = cells_[at - 1] = {};
    cell.kind = kind;
    cell.number = number;
    return cell;
  }

  // What `show` adds is what the cell shows.
  template <class Show>
  void Keep(SheetCell& cell, Show show) {
    const std::size_t from = shown_.size();
    show();
    if (shown_.size() > kMostRowText) throw UserError(kTooMuch);
    cell.text = std::string_view(shown_).substr(from);
  }

  // `passing`: the text is gone when the next cell begins.
  void SetText(std::string_view text, bool passing) {
    const NumberFormat& format = book_.Format(style_);
    SheetCell& cell = Put(SheetKind::Text, 0);
    if (!passing && !format.ShowsText()) {
      cell.text = text;
      return;
    }
    if (shown_.size() + text.size() > kMostRowText) throw UserError(kTooMuch);
    Keep(cell, [&] { format.Text(text, shown_); });
  }

  void SetNumber(double number) {
    const NumberFormat& format = book_.Format(style_);
    if (format.ShowsTime()) {
      SetTime(number, book_.from1904, format);
    } else {
      Keep(Put(SheetKind::Number, number), [&] { format.Number(number, shown_); });
    }
  }

  void SetTime(double serial, bool from1904, const NumberFormat& format) {
    const auto milliseconds = SerialTime(serial, from1904);
    SheetCell& cell = Put(milliseconds ? SheetKind::Date : SheetKind::Number, serial);
    if (milliseconds) {
      cell.time = DateTime::FromSeconds((*milliseconds + 500 - (*milliseconds < -500 ? 999 : 0)) / 1000);
      Keep(cell, [&] { format.Time(*milliseconds, serial, shown_); });
    } else {
      Keep(cell, [&] { format.Number(serial, shown_); });
    }
  }

  void EndRow() {
    in_row_ = false;
    if (cells_.empty()) return;
    for (; given_ + 1 < row_; ++given_) Give(SheetRow(given_ + 1, {}));
    Give(SheetRow(row_, cells_));
    given_ = row_;
  }

  void Give(const SheetRow& row) {
    if (!sink_.Row(row)) throw Enough{};
  }

  const Book& book_;
  SheetSink& sink_;

  // Where the reader stands.
  bool inside_ = false, in_row_ = false, in_cell_ = false, phonetic_ = false, gather_ = false;
  bool numbered_ = false;
  int row_ = 0, column_ = 0, given_ = 0;
  Type type_ = Type::Number;
  std::size_t style_ = 0;
  std::string text_;   // of the cell, as it stands in the file
  std::string shown_;  // of the row's cells
  std::vector<SheetCell> cells_;
};

}  // namespace

void SheetReader::Read(const InputFile& file, SheetSink& rows) { Read(file.Bytes(kMaxSheetFile), rows); }

void SheetReader::Read(std::string_view bytes, SheetSink& rows) {
  try {
    Archive archive(bytes);
    const Book book(archive);
    Cells(book, rows).Read(archive, book.sheet);
  } catch (const Enough&) {
  } catch (...) {
    rows.TakeBack();
    throw;
  }
}

}  // namespace orv
