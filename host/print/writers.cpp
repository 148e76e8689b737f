#include "host/print/writers.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "host/print/chart.h"
#include "host/print/format.h"
#include "host/print/sheet_form.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::size_t kTextLines = 60;  // of a page of text, without its head
// The narrowest sheets of text, upright and lying.
constexpr std::size_t kNarrow = 60, kBroad = 132;

constexpr std::string_view kStyle = R"css(
:root { color-scheme: light; }
body { font: 13px/1.4 system-ui, sans-serif; margin: 24px; color: #16212a; background: #fff; }
header { display: flex; justify-content: space-between; gap: 24px; border-bottom: 2px solid #0f5a66; margin-bottom: 12px; padding-bottom: 8px; }
h1 { font-size: 18px; margin: 0; }
h2 { font-size: 14px; margin: 18px 0 6px; }
p { margin: 2px 0; }
.right { text-align: right; white-space: nowrap; color: #51616c; }
table { border-collapse: collapse; width: 100%; font-variant-numeric: tabular-nums; }
th { text-align: left; border-bottom: 1px solid #51616c; padding: 4px 6px; vertical-align: bottom; }
td { padding: 3px 6px; vertical-align: top; overflow-wrap: break-word; border-bottom: 1px solid #e6eaed; }
.d { text-align: right; } td.d, td.n { white-space: nowrap; overflow-wrap: normal; } .c { text-align: center; }
.b td, td.b { font-weight: 600; } .i td, td.i { font-style: italic; }
.m td, td.m { color: #51616c; } .w td, td.w { color: #7a4a00; } .a td, td.a { color: #9b1c1c; }
.s td, td.s { background: #eef2f4; } .h td, td.h { background: #fdf0c8; }
.r td, td.r { border-top: 1px solid #51616c; }
.g td { height: 6px; border-bottom: 0; }
.filters { color: #51616c; } .filters span { display: inline-block; margin-right: 18px; overflow-wrap: anywhere; }
figure { margin: 0 0 12px; } svg { display: block; font-family: system-ui, sans-serif; }
figure svg { width: 100%; height: auto; }
.sheet { border: 1px solid #c6d0d6; margin: 0 0 12px; max-width: 100%; height: auto; }
.notes { margin-top: 18px; border-left: 3px solid #a15c00; padding-left: 10px; color: #5f3b00; }
@media print {
  @page { size: A4; margin: 12mm; @bottom-right { content: "Página " counter(page) " de " counter(pages); font: 8px system-ui, sans-serif; } }
  @page lying { size: A4 landscape; }
  .lying { page: lying; }
  body { margin: 0; font-size: 9px; -webkit-print-color-adjust: exact; print-color-adjust: exact; }
  figure { break-inside: avoid; }
  thead { display: table-header-group; }
  tr { break-inside: avoid; }
  .np { break-before: page; }
  .g, .k { break-after: avoid; } .f { break-before: avoid; } h2 { break-after: avoid; }
  .sheet { border: 0; max-width: none; break-inside: avoid; }
}
)css";

std::string_view AlignClass(Align align) {
  return align == Align::Right ? "d" : align == Align::Center ? "c" : "";
}

// A code isn't broken at its signs; a sentence and what is longer than any code may be.
bool IsCode(const ReportCell& cell) {
  constexpr std::size_t kLongestCode = 20;
  return cell.span == 1 && cell.text.size() <= kLongestCode && cell.text.find(' ') == std::string::npos;
}

// The attribute of an element with a look and one more class, "" for none.
std::string Classes(uint8_t style, std::string_view more) {
  std::string classes;
  const auto add = [&](bool on, std::string_view name) {
    if (on) classes += (classes.empty() ? "" : " ") + std::string(name);
  };
  add((style & kBold) != 0, "b");
  add((style & kItalic) != 0, "i");
  add((style & kMuted) != 0, "m");
  add((style & kWarning) != 0, "w");
  add((style & kAlert) != 0, "a");
  add((style & kShade) != 0, "s");
  add((style & kMark) != 0, "h");
  add((style & kRule) != 0, "r");
  add(!more.empty(), more);
  return classes.empty() ? "" : " class=\"" + classes + "\"";
}

// --- Pictures as they stand in a page.

std::string Painted(std::string_view attribute, Ink ink) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text = " " + std::string(attribute) + "=\"#";
  for (int bits = 20; bits >= 0; bits -= 4) text += kDigits[(ColourOf(ink) >> bits) & 15];
  return text + "\"";
}

struct Svg {
  std::string& html;
  double font;

  void operator()(const Box& box) const {
    html += "<rect x=\"" + FixedText(box.x) + "\" y=\"" + FixedText(box.y) + "\" width=\"" +
            FixedText(box.width) + "\" height=\"" + FixedText(box.height) + "\"" + Painted("fill", box.ink) +
            "/>";
  }
  void operator()(const Stroke& stroke) const {
    html += "<polyline fill=\"none\" points=\"";
    for (const auto& [x, y] : stroke.points) html += FixedText(x) + "," + FixedText(y) + " ";
    html += "\" stroke-width=\"" + FixedText(stroke.width) + "\"" + Painted("stroke", stroke.ink);
    if (stroke.dashed) html += " stroke-dasharray=\"" + FixedText(font * 0.6) + "\"";
    html += "/>";
  }
  void operator()(const Dot& dot) const {
    html += "<circle cx=\"" + FixedText(dot.x) + "\" cy=\"" + FixedText(dot.y) + "\" r=\"" +
            FixedText(dot.radius) + "\"" + Painted("fill", dot.ink) + "/>";
  }
  void operator()(const Caption& caption) const {
    html += "<text x=\"" + FixedText(caption.x) + "\" y=\"" + FixedText(caption.y) + "\"";
    if (caption.align != Align::Left)
      html += caption.align == Align::Right ? " text-anchor=\"end\"" : " text-anchor=\"middle\"";
    html += Painted("fill", Ink::Text) + ">" + EscapedHtml(caption.text) + "</text>";
  }
};

void HtmlPicture(const ReportPicture& picture, bool landscape, std::string& html) {
  constexpr double kFont = 11, kHeight = 280;
  const double width = landscape ? 1040 : 720;
  std::string titles;
  for (const auto& one : picture.series) titles += (titles.empty() ? "" : ", ") + one.title;
  html += "<figure><svg role=\"img\" aria-label=\"" +
          EscapedHtml("Gráfico: " + titles + ". " + picture.part) + "\" viewBox=\"0 0 " + FixedText(width) +
          " " + FixedText(kHeight) + "\" font-size=\"" + FixedText(kFont) + "\">";
  for (const Shape& shape : Draw(picture, width, kHeight, kFont)) std::visit(Svg{html, kFont}, shape);
  html += "</svg></figure>\n";
}

void HtmlTable(const Report& report, std::size_t section, std::size_t& line, std::string& html) {
  const auto& columns = report.columns[section];
  int whole = 0;
  for (const PrintColumn& column : columns) whole += column.width;
  html += "<table><colgroup>";
  for (const PrintColumn& column : columns) {
    html += "<col width=\"" + std::to_string(column.width * 100 / std::max(whole, 1)) + "%\">";
  }
  html += "</colgroup><thead><tr>";
  for (const PrintColumn& column : columns) {
    html += "<th scope=\"col\"" + Classes(kPlain, AlignClass(column.align)) + ">" +
            EscapedHtml(column.title) + "</th>";
  }
  html += "</tr></thead><tbody>\n";
  for (; line < report.lines.size() && report.lines[line].section == section; ++line) {
    const ReportLine& one = report.lines[line];
    if (one.gap && !one.new_page)
      html += "<tr class=\"g\" aria-hidden=\"true\"><td colspan=\"" + std::to_string(columns.size()) +
              "\"></td></tr>\n";
    std::string around = one.new_page ? "np" : "";
    for (const auto& [on, name] : {std::pair(one.lead, "k"), std::pair(one.sum, "f")})
      if (on) around += (around.empty() ? "" : " ") + std::string(name);
    html += "<tr" + Classes(one.style, around) + ">";
    std::size_t at = 0;
    const auto blank = [&](std::size_t to) {
      if (to > at)
        html += to - at == 1 ? "<td></td>" : "<td colspan=\"" + std::to_string(to - at) + "\"></td>";
    };
    for (const ReportCell& cell : one.cells) {
      blank(cell.column);
      const Align align = columns[cell.column].align;
      html += "<td" + Classes(cell.style, align == Align::Left && IsCode(cell) ? "n" : AlignClass(align));
      if (cell.span > 1) html += " colspan=\"" + std::to_string(cell.span) + "\"";
      html += ">" + EscapedHtml(cell.text) + "</td>";
      at = cell.column + cell.span;
    }
    blank(columns.size());
    html += "</tr>\n";
  }
  html += "</tbody></table>\n";
}

// A text in so many characters. An amount that doesn't fit is never cut.
std::string Fitted(const std::string& text, std::size_t width, Align align) {
  const std::size_t count = CharCount(text);
  if (count > width)
    return align == Align::Right ? std::string(width, '#') : std::string(CutChars(text, width));
  const std::size_t before = align == Align::Right    ? width - count
                             : align == Align::Center ? (width - count) / 2
                                                      : 0;
  return std::string(before, ' ') + text + std::string(width - count - before, ' ');
}

std::string Spread(const std::string& left, const std::string& right, std::size_t width) {
  const std::size_t taken = CharCount(left) + CharCount(right);
  return left + std::string(width > taken ? width - taken : 1, ' ') + right + "\n";
}

std::string TrimmedRight(std::string line) {
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}

std::string TextCells(const ReportLine& line, const std::vector<PrintColumn>& columns,
                      const std::vector<std::size_t>& places) {
  std::string text;
  for (const ReportCell& cell : line.cells) {
    text = TrimmedRight(text);
    const std::size_t from = places[cell.column];
    const std::size_t count = CharCount(text);
    if (count < from) text += std::string(from - count, ' ');
    text += Fitted(cell.text, places[cell.column + cell.span] - 1 - from, columns[cell.column].align);
  }
  return TrimmedRight(text);
}

// "-1.234,56" is an amount, whatever type its field has; "-1+cmd" isn't.
bool IsAmount(std::string_view text) {
  if (text[0] != '-' && text[0] != '+') return false;
  return text.find_first_not_of("0123456789.,", 1) == std::string_view::npos;
}

std::string CsvCell(const Value& value, int decimals = 2) {
  std::string text = value.AsString();
  if (value.Kind() == ValueKind::Currency || value.Kind() == ValueKind::Float) {
    // Of a number that is no amount no place is lost.
    constexpr std::size_t kMost = 8;
    const auto places = static_cast<std::size_t>(decimals);
    const std::size_t most = value.Kind() == ValueKind::Float ? kMost : places;
    text = FormatValue(value, "0." + std::string(most, '0'));
    // One beyond all measure has none.
    for (std::size_t more = most; more > places && text.ends_with('0') && text.find(',') != std::string::npos;
         --more)
      text.pop_back();
  }
  if (value.IsText() && text.size() > 1 && text.find_first_of("=+-@\t\r\n") == 0 && !IsAmount(text)) {
    text.insert(text.begin(), '\'');
  }
  if (text.find_first_of(";\"\r\n") == std::string::npos) return text;
  return "\"" + ReplaceAll(text, "\"", "\"\"") + "\"";
}

}  // namespace

std::string EscapedHtml(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&#39;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string FixedText(double number) {
  std::array<char, 32> text{};
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed, 1).ptr;
  return {text.data(), end};
}

std::vector<std::size_t> ColumnPlaces(const std::vector<PrintColumn>& columns) {
  std::vector<std::size_t> places{0};
  for (const PrintColumn& column : columns)
    places.push_back(places.back() + static_cast<std::size_t>(column.width) + 1);
  return places;
}

uint32_t TextColour(uint8_t style) {
  if ((style & kAlert) != 0) return 0x9b1c1c;
  if ((style & kWarning) != 0) return 0x7a4a00;
  return (style & kMuted) != 0 ? 0x51616c : 0;
}

uint32_t GroundColour(uint8_t style) {
  if ((style & kMark) != 0) return 0xfdf0c8;
  return (style & kShade) != 0 ? 0xeef2f4 : 0;
}

// A section of pictures without lines has no table.
bool PicturesAlone(const Report& report, std::size_t section) {
  const auto of = [&](const auto& one) { return one.section == section; };
  return std::ranges::any_of(report.pictures, of) && std::ranges::none_of(report.lines, of);
}

std::vector<std::vector<PageLine>> Pages(const Report& report, std::size_t lines_a_page, std::size_t picture,
                                         bool gaps) {
  using Kind = PageLine::Kind;
  std::vector<std::vector<PageLine>> pages(1);
  const auto put = [&](PageLine line) { pages.back().push_back(line); };
  // How many lines of a full page go over to the next one, so that no sum begins a page without a line that
  // it adds up and no head ends one.
  const auto carried = [&](std::size_t line) {
    const std::vector<PageLine>& page = pages.back();
    std::size_t count = 0;
    while (count < page.size() && page[page.size() - 1 - count].kind == Kind::Line &&
           (report.lines[line - count].sum || report.lines[line - count - 1].lead)) {
      ++count;
    }
    return count <= lines_a_page / 4 ? count : 0;
  };
  const auto room_for = [&](std::size_t lines) {
    if (!pages.back().empty() && pages.back().size() + lines > lines_a_page) pages.emplace_back();
  };
  std::size_t line = 0, drawn = 0;
  for (std::size_t section = 0; section < report.columns.size(); ++section) {
    const auto pictured = [&] {
      return picture > 0 && drawn < report.pictures.size() && report.pictures[drawn].section == section;
    };
    const bool alone = PicturesAlone(report, section);
    if (alone && picture == 0) continue;
    if (report.new_pages[section] && !pages.back().empty()) pages.emplace_back();
    room_for(pictured() ? picture + 2 : 5);
    if (!pages.back().empty()) put({Kind::Blank, 0});
    if (!report.headings[section].empty()) put({Kind::Heading, section});
    for (; pictured(); ++drawn) {
      room_for(picture);
      put({Kind::Picture, drawn});
      pages.back().resize(pages.back().size() + picture - 1, {Kind::Blank, 0});
    }
    if (alone) continue;
    if (line < report.lines.size() && report.lines[line].section == section) room_for(2);
    put({Kind::Titles, section});
    for (; line < report.lines.size() && report.lines[line].section == section; ++line) {
      const bool gap = gaps && report.lines[line].gap && pages.back().back().kind == Kind::Line;
      // A blank line is followed by more than a head on its page.
      const bool full = pages.back().size() + (gap ? 3 : 0) >= lines_a_page;
      if (full || report.lines[line].new_page) {
        const std::size_t back = full && !report.lines[line].new_page ? carried(line) : 0;
        pages.back().resize(pages.back().size() - back);
        pages.emplace_back();
        put({Kind::Titles, section});
        for (std::size_t at = line - back; at < line; ++at) put({Kind::Line, at});
      }
      if (gap && pages.back().back().kind == Kind::Line) put({Kind::Blank, 0});
      put({Kind::Line, line});
    }
  }
  for (std::size_t note = 0; note < report.notes.size(); ++note) {
    if (pages.back().size() >= lines_a_page) pages.emplace_back();
    if (note == 0 && !pages.back().empty()) put({Kind::Blank, 0});
    put({Kind::Note, note});
  }
  return pages;
}

std::string_view ReportHtmlStyle() { return kStyle; }

std::string ReportHtml(const Report& report) {
  std::string html = "<!doctype html>\n<html lang=\"pt-BR\"><head><meta charset=\"utf-8\"><title>" +
                     EscapedHtml(report.title) + "</title><style>" + std::string(kStyle) +
                     "</style></head>\n<body" + Classes(kPlain, report.landscape ? "lying" : "") +
                     "><header><div><h1>" + EscapedHtml(report.title) + "</h1>";
  for (const std::string& subtitle : report.subtitles) html += "<p>" + EscapedHtml(subtitle) + "</p>";
  if (!report.filters.empty()) {
    html += "<p class=\"filters\">";
    for (const std::string& filter : report.filters) html += "<span>" + EscapedHtml(filter) + "</span> ";
    html += "</p>";
  }
  html += "</div><div class=\"right\"><p>" + EscapedHtml(report.company) + "</p><p>" +
          FormatValue(Value(report.when), "dd/mm/yyyy hh:nn") + "</p><p>" + EscapedHtml(report.user) +
          "</p></div></header>\n";
  html += SheetsHtml(report);
  std::size_t line = 0, picture = 0;
  for (std::size_t section = 0; report.sheet_width == 0 && section < report.columns.size(); ++section) {
    if (!report.headings[section].empty() || report.new_pages[section])
      html += "<h2" + Classes(kPlain, report.new_pages[section] ? "np" : "") + ">" +
              EscapedHtml(report.headings[section]) + "</h2>\n";
    for (; picture < report.pictures.size() && report.pictures[picture].section == section; ++picture)
      HtmlPicture(report.pictures[picture], report.landscape, html);
    if (!PicturesAlone(report, section)) HtmlTable(report, section, line, html);
  }
  if (!report.notes.empty()) {
    html += "<div class=\"notes\" role=\"note\"><p>Nem tudo pôde ser impresso:</p>";
    for (const std::string& note : report.notes) html += "<p>" + EscapedHtml(note) + "</p>";
    html += "</div>";
  }
  return html + "</body></html>\n";
}

std::string ReportText66(const Report& report) {
  if (report.sheet_width > 0) {
    std::string text = SheetsText(report);
    for (const std::string& note : report.notes) text += "* " + note + "\n";
    return text;
  }
  std::size_t width = report.landscape ? kBroad : kNarrow;
  std::vector<std::vector<std::size_t>> places;
  for (const auto& columns : report.columns) {
    places.push_back(ColumnPlaces(columns));
    width = std::max(width, places.back().back());
  }
  const auto pages = Pages(report, kTextLines);
  std::string text;
  for (std::size_t page = 0; page < pages.size(); ++page) {
    if (page > 0) text += '\f';
    text += Spread(report.company, FormatValue(Value(report.when), "dd/mm/yyyy hh:nn"), width);
    text += Spread(report.title, "Página " + std::to_string(page + 1) + " de " + std::to_string(pages.size()),
                   width);
    for (const std::string& subtitle : report.subtitles) text += subtitle + "\n";
    text += std::string(width, '=') + "\n";
    for (const auto& [kind, index] : pages[page]) {
      switch (kind) {
        case PageLine::Kind::Line: {
          const ReportLine& line = report.lines[index];
          if ((line.style & kRule) != 0) text += std::string(width, '-') + "\n";
          text += TextCells(line, report.columns[line.section], places[line.section]) + "\n";
          break;
        }
        case PageLine::Kind::Titles: {
          ReportLine titles;
          const auto& columns = report.columns[index];
          for (std::size_t at = 0; at < columns.size(); ++at) {
            titles.cells.push_back(
                {std::string(CutChars(columns[at].title, static_cast<std::size_t>(columns[at].width))),
                 static_cast<uint16_t>(at), 1, kPlain});
          }
          text += TextCells(titles, columns, places[index]) + "\n" + std::string(width, '-') + "\n";
          break;
        }
        case PageLine::Kind::Heading:
          text += report.headings[index] + "\n";
          break;
        case PageLine::Kind::Note:
          text += "* " + report.notes[index] + "\n";
          break;
        case PageLine::Kind::Blank:
        case PageLine::Kind::Picture:
          text += "\n";
      }
    }
  }
  return text;
}

std::string TableCsv(const ReportRows& table) {
  std::string csv = "\xEF\xBB\xBF";
  const auto line = [&](auto cell) {
    for (std::size_t at = 0; at < table.fields.size(); ++at) csv += (at > 0 ? ";" : "") + cell(at);
    csv += "\r\n";
  };
  line([&](std::size_t at) { return CsvCell(Value(table.fields[at])); });
  for (const auto& row : table.rows)
    line([&](std::size_t at) { return CsvCell(row[at], table.decimals.empty() ? 2 : table.decimals[at]); });
  return csv;
}

}  // namespace orv
