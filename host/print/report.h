// A report laid out from the rows of a screen: lines of texts in columns, which any of the forms writes down.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/print/report_template.h"
#include "toolkit/dataset.h"
#include "toolkit/report_answers.h"

namespace orv {

// A set's table as a person knows it.
struct SetCaptions {
  struct Column {
    std::string field, title;
    int decimals = 2;
  };
  std::string name;             // "" for a set that no grid shows
  std::vector<Column> columns;  // in their order
};

struct ReportInput {
  std::string company;
  std::string user;
  DateTime now;
  // A data set by its name, null for none.
  std::function<DataSet*(std::string_view)> set;
  // What the screen answers to a name that the report doesn't know.
  std::function<std::optional<ReportAnswer>(std::string_view)> answer;
  // How the screen shows a set.
  std::function<SetCaptions(const DataSet&)> captions;
  // What the user asked for, each with its caption: "Conta: 001-X".
  std::vector<std::string> filters;
};

struct ReportCell {
  std::string text;
  uint16_t column = 0;
  uint16_t span = 1;
  uint8_t style = kPlain;  // beside the line's
};

struct ReportLine {
  uint16_t section = 0;
  uint8_t style = kPlain;
  bool new_page = false;  // begins one
  bool lead = false;      // tells what the next line belongs to
  bool sum = false;       // adds up what stands before it
  bool gap = false;       // begins a group, apart from the one before
  std::vector<ReportCell> cells;
};

// The rows of a data set as they were, as a table for a spreadsheet: its name, the titles of its columns.
struct ReportRows {
  std::string set;
  std::vector<std::string> fields;
  std::vector<FieldType> types;
  std::vector<int> decimals{};  // of each column at least, empty for two
  std::vector<std::vector<Value>> rows;
  // The looks of cells other than plain, by row * fields + field.
  std::unordered_map<std::size_t, uint8_t> looks;
};

// A picture above a section's lines: so many points of its rows.
struct ReportPicture {
  struct Series {
    std::string title;
    bool bars = true;                           // else a line
    std::vector<std::optional<double>> values;  // of each point
  };
  uint16_t section = 0;
  std::string part;  // which points of several pictures these are
  std::vector<std::string> labels;
  std::vector<Series> series;
  // The least and the most of the whole section, for one scale on all its pictures.
  double low = 0, high = 0;
};

inline constexpr std::size_t kPointsAPicture = 15;

// A text of a sheet, as SheetField places it.
struct PlacedText {
  double x = 0, y = 0, width = 0;
  Align align = Align::Left;
  bool bold = false;
  double size = 10;
  int lines = 1;
  double step = 0;
  std::string text;
};
using ReportSheet = std::vector<PlacedText>;

struct Report {
  std::string identifier, title, company, user;
  DateTime when;
  std::vector<std::string> subtitles;
  // What the user asked for and the subtitles don't say.
  std::vector<std::string> filters;
  bool landscape = false;
  // Of a form, in millimetres; 0 of a report in lines.
  double sheet_width = 0, sheet_height = 0;
  std::vector<ReportSheet> sheets;
  // The columns of each section, and what stands above them.
  std::vector<std::vector<PrintColumn>> columns;
  std::vector<std::string> headings;
  // Whether it begins a page.
  std::vector<bool> new_pages;
  std::vector<ReportLine> lines;
  std::vector<ReportPicture> pictures;
  // One a table; those of the sections first, in their order.
  std::vector<ReportRows> sets;
  // Rows that the sections walked.
  int64_t walked = 0;
  // What couldn't be read or worked out, each once.
  std::vector<std::string> notes;

  // Values kept, as a measure of memory.
  std::size_t Size() const;
};

// What a value that couldn't be worked out prints.
inline constexpr std::string_view kFault = "#ERRO";

// Walks the data sets without moving their cursors. Faults of the template are in the report's notes; what
// they don't touch is printed.
Report LayOut(const ReportTemplate& form, const ReportInput& input);

}  // namespace orv
