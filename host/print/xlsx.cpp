#include <xlsxwriter.h>

#include "host/print/writers.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::size_t kMostRows = 1048575;  // of a sheet, beside its titles

// The writer's own handle, closed whatever happens.
class Book {
 public:
  explicit Book(const std::string& file) {
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    book_ = workbook_new_opt(file.c_str(), &options);
    if (book_ == nullptr) throw UserError("A planilha não pôde ser criada.");
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

// A sheet's name has 31 characters and none of these.
std::string SheetName(const std::string& set, std::size_t number) {
  std::string name(CutChars(set, 25));
  for (char& c : name) {
    if (std::string_view("[]:*?/\\'").find(c) != std::string_view::npos) c = '_';
  }
  return number == 0 ? name : name + " " + std::to_string(number + 1);
}

struct Formats {
  lxw_format *title, *money, *number, *day, *time;
};

void Write(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column, const Value& value,
           const Formats& formats) {
  switch (value.Kind()) {
    case ValueKind::Null:
      break;
    case ValueKind::Integer:
      worksheet_write_number(sheet, row, column, value.AsFloat(), nullptr);
      break;
    case ValueKind::Float:
      worksheet_write_number(sheet, row, column, value.AsFloat(), formats.number);
      break;
    case ValueKind::Currency:
      worksheet_write_number(sheet, row, column, value.AsCurrency().ToDouble(), formats.money);
      break;
    case ValueKind::Date:
    case ValueKind::DateTime: {
      const Date day = value.AsDate();
      // Before 1900 a spreadsheet knows no dates.
      if (day.Year() < 1900) {
        worksheet_write_string(sheet, row, column, value.AsString().c_str(), nullptr);
        break;
      }
      lxw_datetime at{day.Year(), day.Month(), day.Day(), 0, 0, 0};
      if (value.Kind() == ValueKind::DateTime) {
        const auto second = static_cast<int>(((value.AsDateTime().Seconds() % 86400) + 86400) % 86400);
        at.hour = second / 3600;
        at.min = second / 60 % 60;
        at.sec = second % 60;
      }
      worksheet_write_datetime(sheet, row, column, &at,
                               value.Kind() == ValueKind::Date ? formats.day : formats.time);
      break;
    }
    case ValueKind::Text:
      // As a text, whatever it begins with.
      worksheet_write_string(sheet, row, column, std::string(CutChars(value.Text(), 32767)).c_str(), nullptr);
      break;
  }
}

}  // namespace

void WriteReportXlsx(const Report& report, const std::filesystem::path& file) {
  Book book(file.string());
  Formats formats{};
  const auto format = [&](const char* text) {
    lxw_format* made = workbook_add_format(book.Get());
    if (text != nullptr) format_set_num_format(made, text);
    return made;
  };
  formats.title = format(nullptr);
  format_set_bold(formats.title);
  formats.money = format("#,##0.00");
  formats.number = format("#,##0.00######");
  formats.day = format("dd/mm/yyyy");
  formats.time = format("dd/mm/yyyy hh:mm");
  for (const ReportRows& set : report.sets) {
    std::size_t from = 0;
    std::size_t number = 0;
    do {
      lxw_worksheet* sheet = workbook_add_worksheet(book.Get(), SheetName(set.set, number++).c_str());
      if (sheet == nullptr) throw UserError("A planilha não pôde ser criada.");
      worksheet_freeze_panes(sheet, 1, 0);
      for (std::size_t at = 0; at < set.fields.size(); ++at) {
        worksheet_write_string(sheet, 0, static_cast<lxw_col_t>(at), set.fields[at].c_str(), formats.title);
      }
      const std::size_t end = std::min(set.rows.size(), from + kMostRows);
      for (lxw_row_t row = 1; from < end; ++from, ++row) {
        for (std::size_t at = 0; at < set.rows[from].size(); ++at) {
          Write(sheet, row, static_cast<lxw_col_t>(at), set.rows[from][at], formats);
        }
      }
    } while (from < set.rows.size());
  }
  book.Close();
}

}  // namespace orv
