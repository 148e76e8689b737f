#include "host/print/sheet_form.h"

#include <algorithm>
#include <cmath>

#include "host/print/writers.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr double kInch = 25.4, kPoint = kInch / 72;
constexpr double kCharacter = kInch / 10, kLine = kInch / 6;
// A character's width beside the letter's size, where nobody measures it.
constexpr double kBreadth = 0.62;
constexpr double kSmallest = 0.5;

std::vector<std::string> Wrapped(std::string_view text, std::size_t lines, double room,
                                 const std::function<double(std::string_view)>& width) {
  std::vector<std::string> wrapped(1);
  for (const std::string& word : Split(text, " ")) {
    const std::string longer = wrapped.back().empty() ? word : wrapped.back() + " " + word;
    if (wrapped.back().empty() || width(longer) <= room || wrapped.size() == lines) {
      wrapped.back() = longer;
    } else {
      wrapped.push_back(word);
    }
  }
  return wrapped;
}

}  // namespace

FittedText Fit(const PlacedText& placed, const std::function<double(std::string_view)>& width) {
  FittedText fitted;
  for (;; fitted.scale -= 0.05) {
    fitted.lines =
        Wrapped(placed.text, static_cast<std::size_t>(placed.lines), placed.width / fitted.scale, width);
    if (width(fitted.lines.back()) * fitted.scale <= placed.width || fitted.scale <= kSmallest) return fitted;
  }
}

std::string SheetsHtml(const Report& report) {
  std::string html;
  for (const ReportSheet& sheet : report.sheets) {
    const std::string width = FixedText(report.sheet_width), height = FixedText(report.sheet_height);
    html += "<svg class=\"sheet\" role=\"img\" aria-label=\"" + EscapedHtml(report.title) + "\" width=\"" +
            width + "mm\" height=\"" + height + "mm\" viewBox=\"0 0 " + width + " " + height + "\">";
    for (const PlacedText& placed : sheet) {
      const double size = placed.size * kPoint;
      const auto measure = [&](std::string_view text) {
        return static_cast<double>(CharCount(text)) * size * kBreadth;
      };
      const FittedText fitted = Fit(placed, measure);
      double y = placed.y;
      for (const std::string& line : fitted.lines) {
        const double x = placed.align == Align::Left    ? placed.x
                         : placed.align == Align::Right ? placed.x + placed.width
                                                        : placed.x + placed.width / 2;
        html += "<text x=\"" + FixedText(x) + "\" y=\"" + FixedText(y) + "\" font-size=\"" +
                FixedText(size * fitted.scale) + "\"";
        if (placed.align != Align::Left)
          html += placed.align == Align::Right ? " text-anchor=\"end\"" : " text-anchor=\"middle\"";
        if (placed.bold) html += " font-weight=\"600\"";
        if (measure(line) * fitted.scale > placed.width)
          html += " textLength=\"" + FixedText(placed.width) + "\" lengthAdjust=\"spacingAndGlyphs\"";
        html += ">" + EscapedHtml(line) + "</text>";
        y += placed.step;
      }
    }
    html += "</svg>\n";
  }
  return html;
}

std::string SheetsText(const Report& report) {
  std::string text;
  for (const ReportSheet& sheet : report.sheets) {
    if (&sheet != report.sheets.data()) text += '\f';
    // Each line a row of characters, of which each may be several bytes.
    std::vector<std::vector<std::string>> lines(static_cast<std::size_t>(report.sheet_height / kLine));
    for (const PlacedText& placed : sheet) {
      const FittedText fitted =
          Fit(placed, [](std::string_view one) { return static_cast<double>(CharCount(one)) * kCharacter; });
      double y = placed.y;
      for (const std::string& line : fitted.lines) {
        const auto row = static_cast<std::size_t>(y / kLine);
        const auto count = static_cast<double>(CharCount(line));
        const double spare = std::max(placed.width / kCharacter - count, 0.0);
        const double before = placed.align == Align::Left    ? 0
                              : placed.align == Align::Right ? spare
                                                             : spare / 2;
        auto column = static_cast<std::size_t>(std::lround(placed.x / kCharacter + before));
        if (row >= lines.size()) lines.resize(row + 1);
        for (std::string_view rest = line; !rest.empty(); ++column) {
          const std::string_view one = CutChars(rest, 1);
          if (column >= lines[row].size()) lines[row].resize(column + 1, " ");
          lines[row][column] = one;
          rest.remove_prefix(one.size());
        }
        y += placed.step;
      }
    }
    for (const auto& line : lines) text += Join(line, "") + "\n";
  }
  return text;
}

}  // namespace orv
