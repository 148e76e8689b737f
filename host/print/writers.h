// The forms in which a report is written down.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/print/report.h"

namespace orv {

// Writes the report in a form, "html", "pdf", "txt", "csv" or "xlsx", to a file that isn't there yet; as
// "csv" the table of that number. Raises UserError when that can't be done.
void WriteReport(const Report& report, std::string_view format, const std::filesystem::path& file,
                 std::size_t table = 0);

// A page for a browser, whole in itself.
std::string ReportHtml(const Report& report);
// The style that stands in it, for those who allow it by its digest.
std::string_view ReportHtmlStyle();

// Fixed columns, a form feed between pages.
std::string ReportText66(const Report& report);

// The rows of a table, parted by ";", with their mark of UTF-8; amounts with two decimals. A text that a
// spreadsheet would take for a formula is led by an apostrophe.
std::string TableCsv(const ReportRows& table);

// A sheet a table: numbers as numbers, dates as dates. `made`: when the book says that it was made.
void WriteXlsx(std::span<const ReportRows> tables, DateTime made, const std::filesystem::path& file);

// A4, or the form's own sheet. Raises UserError when the fonts aren't installed.
void WriteReportPdf(const Report& report, const std::filesystem::path& file);

// --- Shared by the forms that have pages.

// A line of a page: of the report, or what stands around it.
struct PageLine {
  enum class Kind : uint8_t { Line, Titles, Heading, Blank, Note, Picture } kind = Kind::Line;
  std::size_t index = 0;  // of the line, of the section, of the note, or of the picture
};

// The report's lines on pages of so many, with the columns' titles at the head of each. A picture takes
// `picture` lines, the others of which are blank; with none it is left out. With `gaps` groups stand apart.
std::vector<std::vector<PageLine>> Pages(const Report& report, std::size_t lines_a_page,
                                         std::size_t picture = 0, bool gaps = false);

// Red, green, blue of what a style colours, as numbers "#rrggbb"; 0 for what it doesn't.
uint32_t TextColour(uint8_t style);
uint32_t GroundColour(uint8_t style);

// A text as it stands in a page for a browser; a number with one place.
std::string EscapedHtml(std::string_view text);
std::string FixedText(double number);

// Where each column begins, in characters, with one blank between two; the last number is the whole width.
std::vector<std::size_t> ColumnPlaces(const std::vector<PrintColumn>& columns);

}  // namespace orv
