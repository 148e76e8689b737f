#include "host/print/chart.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/print/format.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr double kCharacter = 0.6;  // its width, of the font's size
constexpr std::size_t kLabelLines = 3;
constexpr double kIntervals = 5;  // of the scale, about
constexpr double kLeastSpan = 1e-4;

// "12,5 mil", short enough for the foot of a column.
std::string Short(double number) {
  constexpr std::array<std::pair<double, const char*>, 4> kUnits{
      {{1e12, " tri"}, {1e9, " bi"}, {1e6, " mi"}, {1e3, " mil"}}};
  for (const auto& [unit, name] : kUnits) {
    // Four digits are as short as a thousand.
    if (std::abs(number) < (unit == 1e3 ? 1e4 : unit)) continue;
    // Three digits tell enough.
    const double size = std::abs(number) / unit;
    std::string text = FormatValue(Value(number / unit), size >= 100  ? "#,##0"
                                                         : size >= 10 ? "#,##0.0"
                                                                      : "#,##0.00");
    if (text.find(',') != std::string::npos) {
      while (text.ends_with('0')) text.pop_back();
      if (text.ends_with(',')) text.pop_back();
    }
    return text + name;
  }
  const bool whole = std::abs(number) >= 100 || number == std::round(number);
  return FormatValue(Value(number), whole ? "#,##0" : "#,##0.00");
}

// Words in lines of so many characters; what has no room ends with "…".
std::vector<std::string> Wrapped(const std::string& text, std::size_t room) {
  std::vector<std::string> lines;
  for (const std::string& word : Split(text, " ")) {
    if (word.empty()) continue;
    if (!lines.empty() && CharCount(lines.back()) + 1 + CharCount(word) <= room) {
      lines.back() += " " + word;
    } else if (lines.size() == kLabelLines) {
      lines.back() += "…";
      break;
    } else {
      lines.push_back(word);
    }
  }
  for (std::string& line : lines) {
    if (CharCount(line) > room) line = std::string(CutChars(line, room - 1)) + "…";
  }
  return lines;
}

class Chart {
 public:
  Chart(const ReportPicture& picture, double width, double height, double font)
      : picture_(picture), width_(width), font_(font) {
    const double span = std::max(picture.high - picture.low, kLeastSpan);
    const double power = std::pow(10, std::floor(std::log10(span / kIntervals)));
    step_ = 10 * power;
    for (const double times : {5.0, 2.5, 2.0, 1.0}) {
      if (times * power >= span / kIntervals) step_ = times * power;
    }
    from_ = std::floor(picture.low / step_);
    to_ = std::max(std::ceil(picture.high / step_), from_ + 1);
    std::size_t longest = 0;
    for (double tick = from_; tick <= to_; ++tick)
      longest = std::max(longest, CharCount(Short(tick * step_)));
    left_ = (static_cast<double>(longest) * kCharacter + 1) * font_;
    top_ = 3.4 * font_;
    bottom_ = height - (1.25 * kLabelLines + 0.5) * font_;
    slot_ = (width_ - left_ - font_) / static_cast<double>(std::max<std::size_t>(picture.labels.size(), 1));
  }

  std::vector<Shape> Make() {
    Titles();
    Scale();
    std::size_t bars = 0, bar = 0, line = 0;
    for (const auto& one : picture_.series) bars += one.bars ? 1 : 0;
    for (std::size_t at = 0; at < picture_.series.size(); ++at) {
      if (picture_.series[at].bars) Bars(at, bar++, bars);
    }
    Line({{left_, Y(0)}, {width_ - font_, Y(0)}}, 0.1, Ink::Text);
    for (std::size_t at = 0; at < picture_.series.size(); ++at) {
      if (!picture_.series[at].bars) Curve(at, line++);
    }
    for (std::size_t at = 0; at < picture_.series.size(); ++at) {
      if (!picture_.series[at].bars) Amounts(at);
    }
    const auto room = static_cast<std::size_t>(std::max(slot_ / (font_ * kCharacter), 4.0));
    for (std::size_t at = 0; at < picture_.labels.size(); ++at) {
      double y = bottom_ + 1.3 * font_;
      for (std::string& text : Wrapped(picture_.labels[at], room)) {
        Text(X(at), y, std::move(text), Align::Center);
        y += 1.25 * font_;
      }
    }
    return std::move(shapes_);
  }

 private:
  static Ink InkOf(std::size_t series) {
    return series == 0 ? Ink::Dark : series == 1 ? Ink::Light : Ink::Text;
  }
  double X(std::size_t point) const { return left_ + (static_cast<double>(point) + 0.5) * slot_; }
  double Y(double number) const {
    return bottom_ - (number / step_ - from_) / (to_ - from_) * (bottom_ - top_);
  }
  double Long(std::string_view text) const {
    return static_cast<double>(CharCount(text)) * kCharacter * font_;
  }

  // Thicknesses are told in fonts.
  void Line(std::vector<std::pair<double, double>> points, double thickness, Ink ink, bool dashed = false) {
    shapes_.emplace_back(Stroke{std::move(points), thickness * font_, ink, dashed});
  }
  void Text(double x, double y, std::string text, Align align) {
    shapes_.emplace_back(Caption{x, y, std::move(text), align});
  }
  // Of the one line a round mark, of the next one a square one.
  void Mark(double x, double y, Ink ink, bool square) {
    const double half = 0.28 * font_;
    if (square) {
      shapes_.emplace_back(Box{x - half, y - half, 2 * half, 2 * half, ink});
    } else {
      shapes_.emplace_back(Dot{x, y, half, ink});
    }
  }

  void Titles() {
    double x = left_;
    const double y = 1.1 * font_;
    std::size_t line = 0;
    for (std::size_t at = 0; at < picture_.series.size(); ++at) {
      const auto& series = picture_.series[at];
      const double middle = y - 0.35 * font_;
      if (series.bars) {
        shapes_.emplace_back(Box{x, y - 0.75 * font_, 1.6 * font_, 0.8 * font_, InkOf(at)});
      } else {
        Line({{x, middle}, {x + 1.6 * font_, middle}}, 0.18, InkOf(at), line > 0);
        Mark(x + 0.8 * font_, middle, InkOf(at), line++ > 0);
      }
      x += 2 * font_;
      Text(x, y, series.title, Align::Left);
      x += Long(series.title) + 2 * font_;
    }
    if (!picture_.part.empty()) Text(width_ - font_, y, picture_.part, Align::Right);
  }

  void Scale() {
    for (double tick = from_; tick <= to_; ++tick) {
      const double y = Y(tick * step_);
      Line({{left_, y}, {width_ - font_, y}}, 0.08, Ink::Faint);
      Text(left_ - 0.5 * font_, y + 0.35 * font_, Short(tick * step_), Align::Right);
    }
  }

  // With an amount at its end where nothing else has one and there is room.
  void Bars(std::size_t series, std::size_t bar, std::size_t bars) {
    const auto count = static_cast<double>(bars);
    const double wide = std::min(0.72 * slot_ / count, 5 * font_);
    const auto& values = picture_.series[series].values;
    for (std::size_t at = 0; at < values.size(); ++at) {
      if (!values[at]) continue;
      const double x = X(at) + (static_cast<double>(bar) - count / 2) * wide;
      const double y = Y(*values[at]);
      shapes_.emplace_back(Box{x, std::min(y, Y(0)), wide - 0.1 * font_, std::abs(y - Y(0)), InkOf(series)});
      std::string text = Short(*values[at]);
      if (bars == picture_.series.size() && Long(text) <= wide)
        Text(x + wide / 2, y + (*values[at] < 0 ? 1.1 : -0.4) * font_, std::move(text), Align::Center);
    }
  }

  // A missing point parts the line.
  void Curve(std::size_t series, std::size_t line) {
    const Ink ink = InkOf(series);
    const auto& values = picture_.series[series].values;
    std::vector<std::pair<double, double>> run;
    for (std::size_t at = 0; at <= values.size(); ++at) {
      if (at < values.size() && values[at]) {
        run.emplace_back(X(at), Y(*values[at]));
      } else if (!run.empty()) {
        Line(std::exchange(run, {}), 0.18, ink, line > 0);
      }
    }
    for (std::size_t at = 0; at < values.size(); ++at) {
      if (values[at]) Mark(X(at), Y(*values[at]), ink, line > 0);
    }
  }

  // The amounts of the lines: over the highest of a point, under the others.
  void Amounts(std::size_t series) {
    const auto& values = picture_.series[series].values;
    for (std::size_t at = 0; at < values.size(); ++at) {
      if (!values[at]) continue;
      bool highest = true;
      for (std::size_t other = 0; other < picture_.series.size(); ++other) {
        const auto& [title, bars, amounts] = picture_.series[other];
        if (bars || !amounts[at]) continue;
        highest = highest && (other < series ? *amounts[at] < *values[at] : *amounts[at] <= *values[at]);
      }
      std::string text = Short(*values[at]);
      const double x = X(at), base = Y(*values[at]) + (highest ? -0.6 : 1.35) * font_;
      shapes_.emplace_back(Box{x - Long(text) / 2, base - 0.8 * font_, Long(text), font_, Ink::Paper});
      Text(x, base, std::move(text), Align::Center);
    }
  }

  const ReportPicture& picture_;
  double width_, font_;
  // The scale runs from so many steps to so many.
  double step_ = 1, from_ = 0, to_ = 1;
  double left_ = 0, top_ = 0, bottom_ = 0, slot_ = 0;
  std::vector<Shape> shapes_;
};

}  // namespace

std::vector<Shape> Draw(const ReportPicture& picture, double width, double height, double font) {
  return Chart(picture, width, height, font).Make();
}

}  // namespace orv
