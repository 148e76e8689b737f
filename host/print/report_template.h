// A report's template: what a person writes in a text file, read into data sets, values, groups, columns,
// bands and pictures. docs/relatorios.md tells the language.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/print/formula.h"

namespace orv {

enum class Align : uint8_t { Left, Center, Right };

// Bits of the look of a line or a cell. Of several colours the first one of alert, warning and muted counts.
enum Style : uint8_t {
  kPlain = 0,
  kBold = 1,
  kItalic = 2,
  kAlert = 4,
  kShade = 8,
  kRule = 16,
  kMuted = 32,
  kWarning = 64,
  kMark = 128
};

// A look by formulas: that of the first one that holds, else the last one.
struct Look {
  struct Case {
    Formula when;
    uint8_t style = kPlain;
  };
  std::vector<Case> cases;
  uint8_t otherwise = kPlain;
};

// A text with values in brackets: "Período de [TbRelatorio.Data_ini] até [:<dd/mm/yy>TbRelatorio.Data_fim]".
// "[[" is a bracket.
class ReportText {
 public:
  struct Piece {
    std::string text;                // before the value
    std::string format;              // of the value
    std::optional<Formula> formula;  // nothing at the end of the text
  };
  // Raises FormulaError.
  static ReportText Parse(std::string_view text);
  const std::vector<Piece>& Pieces() const { return pieces_; }

 private:
  std::vector<Piece> pieces_;
};

struct PrintColumn {
  std::string title;
  int width = 10;  // in characters
  Align align = Align::Left;
};

struct BandCell {
  ReportText text;
  Look look;
  std::size_t column = 0;
  std::size_t span = 1;
};

struct BandLine {
  std::vector<BandCell> cells;
  int line = 0;  // of the file
};

enum class BandKind : uint8_t { Head, GroupHead, Detail, GroupFoot, Foot };

// Lines that are printed together, where the condition holds.
struct Band {
  BandKind kind = BandKind::Detail;
  std::size_t level = 0;  // of the rows: the section's own, else that of an inner set, from 1
  std::size_t group = 0;  // of the section's groups
  // Only where the group, or what stands under a row, has more than one row.
  bool several = false;
  std::optional<Formula> when;
  Look look;
  std::vector<BandLine> lines;
  int line = 0;  // of the file
};

struct ReportGroup {
  std::string name;
  Formula by;
  bool new_page = false;
  int line = 0;
};

// Rows of another set that stand under each row of a section, or under each of such rows.
struct ReportInner {
  std::string set;
  std::size_t under = 0;  // the level of the rows above
  // Those rows whose key is what `wanted` gives for the row above.
  Formula key, wanted;
  int line = 0;
};

// A picture of a section's rows: a point a row.
struct ReportChart {
  struct Series {
    std::string title;
    Formula formula;
    bool bars = true;  // else a line
  };
  ReportText label;
  std::vector<Series> series;
  int line = 0;
};

// A sum over the rows of a data set.
struct ReportValue {
  std::string name;
  std::string set;
  // The group, or the inner set, with which it begins anew; empty for the whole report.
  std::string group;
  Formula formula;
  int line = 0;
};

// A text at a place of a sheet, in millimetres from its upper left corner to the foot of the first line.
struct SheetField {
  double x = 0, y = 0, width = 0;
  Align align = Align::Left;
  bool bold = false;
  double size = 10;  // of the letters, in points
  int lines = 1;
  double step = 0;  // from line to line, or from row to row
  // The rows of another set, one under the other, so many at most; "" for a text of the sheet's own row.
  std::string set;
  int rows = 0;
  ReportText text;
  int line = 0;  // of the file
};

// The rows of one data set, one after the other.
struct ReportSection {
  std::string set;
  std::string heading;
  bool new_page = false;
  std::vector<PrintColumn> columns;
  std::vector<ReportGroup> groups;
  std::vector<ReportInner> inner;
  std::optional<ReportChart> chart;
  std::vector<Band> bands;
  // What stands on a sheet, of which there is one a row.
  std::vector<SheetField> fields;
  int line = 0;
};

inline constexpr std::size_t kLongestTemplate = 1 << 20;  // bytes

struct ReportTemplate {
  // Reads a template. A line that can't be read is left out and told in `errors`, "modelo X, linha 12: …".
  // Raises UserError for a text that isn't a template at all.
  static ReportTemplate Parse(const std::string& identifier, std::string_view text);

  std::string identifier;
  std::string title;
  std::vector<ReportText> subtitles;
  bool landscape = false;
  // Of a form: its sheet, in millimetres; 0 of a report in lines.
  double sheet_width = 0, sheet_height = 0;
  std::vector<ReportValue> values;
  std::vector<ReportSection> sections;
  std::vector<std::string> errors;
};

// The template of an identifier: the file "<identifier>.rel" of the folder where there is one, else the
// desk's own; without either that of the name without the digits at its end. Names are compared exactly.
// Raises UserError when there is none.
ReportTemplate FindTemplate(const std::string& identifier, const std::string& folder);

// The identifiers of the desk's own templates.
std::vector<std::string> OwnTemplates();

}  // namespace orv
