#include <xlsxwriter.h>

#include <algorithm>
#include <map>
#include <set>

#include "host/print/writers.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::size_t kMostRows = 1048575;  // of a sheet, beside its titles

// The writer's own handle, closed whatever happens.
class Book {
 public:
  // `made`: when the book says that it was made; the zero of DateTime for now.
  Book(const std::string& file, DateTime made) {
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    book_ = workbook_new_opt(file.c_str(), &options);
    if (book_ == nullptr) throw UserError("A planilha não pôde ser criada.");
    lxw_doc_properties properties{};
    properties.created = made.Seconds();
    workbook_set_properties(book_, &properties);
  }
  ~Book() {
    if (book_ != nullptr) workbook_close(book_);
  }
  Book(const Book&) = delete;
  Book& operator=(const Book&) = delete;
  lxw_workbook* Get() const { return book_; }
  void Close() {
    const lxw_error error = workbook_close(std::exchange(book_, nullptr));
    if (error != LXW_NO_ERROR)
      throw UserError("A planilha não pôde ser gravada: " + std::string(lxw_strerror(error)));
  }

 private:
  lxw_workbook* book_ = nullptr;
};

// A sheet's name has 31 characters, none of these, and is the book's only one.
std::string SheetName(const std::string& set, std::set<std::string, std::less<>>& taken) {
  std::string name(CutChars(set.empty() ? "Tabela" : set, 25));
  for (char& c : name) {
    if (std::string_view("[]:*?/\\'").find(c) != std::string_view::npos) c = '_';
  }
  std::string sheet = name;
  for (int number = 2; !taken.insert(Lower(sheet)).second; ++number)
    sheet = name + " " + std::to_string(number);
  return sheet;
}

// In characters: for its title and for what it holds.
double WidthOf(const ReportRows& table, std::size_t column) {
  constexpr std::size_t kLeast = 8, kMost = 50, kLooked = 500;
  std::size_t width = std::max(kLeast, CharCount(table.fields[column]));
  for (std::size_t row = 0; row < std::min(table.rows.size(), kLooked); ++row) {
    const Value& value = table.rows[row][column];
    switch (value.Kind()) {
      case ValueKind::Null:
        break;
      case ValueKind::Date:
        width = std::max<std::size_t>(width, 10);
        break;
      case ValueKind::Currency:
      case ValueKind::Float:
        width = std::max<std::size_t>(width, 14);
        break;
      default:
        width = std::max(width, CharCount(value.AsString()));
    }
  }
  return static_cast<double>(std::min(width, kMost)) + 1;
}

// The formats of cells by what they hold and how they look, made when they are first asked for.
class Formats {
 public:
  explicit Formats(lxw_workbook* book) : book_(book) {}

  // Null for a cell as any other.
  lxw_format* Of(ValueKind kind, uint8_t style, int decimals = 2) {
    const char* text = NumberFormat(kind, decimals);
    if (text == nullptr && style == kPlain) return nullptr;
    lxw_format*& format = formats_[{text, style}];
    if (format != nullptr) return format;
    format = workbook_add_format(book_);
    if (text != nullptr) format_set_num_format(format, text);
    if ((style & kBold) != 0) format_set_bold(format);
    if ((style & kItalic) != 0) format_set_italic(format);
    if ((style & kRule) != 0) format_set_top(format, LXW_BORDER_THIN);
    if (const uint32_t colour = TextColour(style); colour != 0) format_set_font_color(format, colour);
    if (const uint32_t colour = GroundColour(style); colour != 0) {
      format_set_pattern(format, LXW_PATTERN_SOLID);
      format_set_fg_color(format, colour);
    }
    return format;
  }

 private:
  static const char* NumberFormat(ValueKind kind, int decimals) {
    switch (kind) {
      case ValueKind::Float:
      case ValueKind::Currency:
        return decimals > 2 ? "#,##0.00##" : "#,##0.00";
      case ValueKind::Date:
        return "dd/mm/yyyy";
      case ValueKind::DateTime:
        return "dd/mm/yyyy hh:mm";
      default:
        return nullptr;
    }
  }

  lxw_workbook* book_;
  std::map<std::pair<const char*, uint8_t>, lxw_format*> formats_;
};

void Write(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column, const Value& value, lxw_format* format) {
  switch (value.Kind()) {
    case ValueKind::Null:
      if (format != nullptr) worksheet_write_blank(sheet, row, column, format);
      break;
    case ValueKind::Integer:
      worksheet_write_number(sheet, row, column, value.AsFloat(), format);
      break;
    case ValueKind::Float:
      worksheet_write_number(sheet, row, column, value.AsFloat(), format);
      break;
    case ValueKind::Currency:
      worksheet_write_number(sheet, row, column, value.AsCurrency().ToDouble(), format);
      break;
    case ValueKind::Date:
    case ValueKind::DateTime: {
      const Date day = value.AsDate();
      // Before 1900 a spreadsheet knows no dates.
      if (day.Year() < 1900) {
        worksheet_write_string(sheet, row, column, value.AsString().c_str(), format);
        break;
      }
      lxw_datetime at{day.Year(), day.Month(), day.Day(), 0, 0, 0};
      if (value.Kind() == ValueKind::DateTime) {
        const auto second = static_cast<int>(((value.AsDateTime().Seconds() % 86400) + 86400) % 86400);
        at.hour = second / 3600;
        at.min = second / 60 % 60;
        at.sec = second % 60;
      }
      worksheet_write_datetime(sheet, row, column, &at, format);
      break;
    }
    case ValueKind::Text:
      // As a text, whatever it begins with.
      worksheet_write_string(sheet, row, column, std::string(CutChars(value.Text(), 32767)).c_str(), format);
      break;
  }
}

}  // namespace

void WriteXlsx(std::span<const ReportRows> tables, DateTime made, const std::filesystem::path& file) {
  Book book(file.string(), made);
  Formats formats(book.Get());
  std::set<std::string, std::less<>> taken;
  for (const ReportRows& table : tables) {
    const std::size_t columns = table.fields.size();
    std::size_t from = 0;
    do {
      lxw_worksheet* sheet = workbook_add_worksheet(book.Get(), SheetName(table.set, taken).c_str());
      if (sheet == nullptr) throw UserError("A planilha não pôde ser criada.");
      worksheet_freeze_panes(sheet, 1, 0);
      for (std::size_t at = 0; at < columns; ++at) {
        const auto column = static_cast<lxw_col_t>(at);
        worksheet_set_column(sheet, column, column, WidthOf(table, at), nullptr);
        worksheet_write_string(sheet, 0, column, table.fields[at].c_str(),
                               formats.Of(ValueKind::Text, kBold));
      }
      const std::size_t end = std::min(table.rows.size(), from + kMostRows);
      for (lxw_row_t row = 1; from < end; ++from, ++row) {
        for (std::size_t at = 0; at < columns; ++at) {
          const Value& value = table.rows[from][at];
          const auto look = table.looks.find(from * columns + at);
          Write(sheet, row, static_cast<lxw_col_t>(at), value,
                formats.Of(value.Kind(), look == table.looks.end() ? uint8_t{kPlain} : look->second,
                           table.decimals.empty() ? 2 : table.decimals[at]));
        }
      }
    } while (from < table.rows.size());
  }
  book.Close();
}

}  // namespace orv
