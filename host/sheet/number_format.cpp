#include "host/sheet/number_format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "toolkit/date.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr int64_t kDay = 86'400'000;
// Days to the first day of 1904, as counted where 1900 is the first year.
constexpr int kTo1904 = 1462;
// 9999-12-31.
constexpr int64_t kLastDay = 2'932'896;
// What a number in a sheet is worth: further digits are the computer's.
constexpr int kDigits = 15;

constexpr std::array<const char*, 12> kMonths = {"janeiro",  "fevereiro", "março",    "abril",
                                                 "maio",     "junho",     "julho",    "agosto",
                                                 "setembro", "outubro",   "novembro", "dezembro"};
constexpr std::array<const char*, 7> kWeekDays = {
    "domingo", "segunda-feira", "terça-feira", "quarta-feira", "quinta-feira", "sexta-feira", "sábado"};

constexpr int64_t PowerOfTen(int zeros) {
  int64_t power = 1;
  for (; zeros > 0; --zeros) power *= 10;
  return power;
}

void AddNumber(std::string& out, int64_t number, std::size_t width = 0) {
  char text[24];
  const char* const end = std::to_chars(text, text + sizeof text, number).ptr;
  const auto length = static_cast<std::size_t>(end - text);
  if (length < width) out.append(width - length, '0');
  out.append(text, length);
}

bool SameLetters(std::string_view text, std::string_view upper) {
  return text.size() >= upper.size() &&
         std::equal(upper.begin(), upper.end(), text.begin(),
                    [](char u, char c) { return u == c || (u >= 'A' && u <= 'Z' && u + 32 == c); });
}

// Bytes of the character at `at`.
std::size_t CharacterAt(std::string_view text, std::size_t at) {
  return at < text.size() ? CutChars(text.substr(at), 1).size() : 0;
}

// The letter in small, or 0 for one that isn't a date's.
char DateLetter(char c) {
  const auto small = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
  return std::string_view("ymdhs").find(small) != std::string_view::npos ? small : '\0';
}

}  // namespace

// The size of a number by its decimal digits.
struct NumberFormat::Decimal {
  explicit Decimal(double number) {
    char text[40];
    const char* const end =
        std::to_chars(text, text + sizeof text, std::fabs(number), std::chars_format::scientific).ptr;
    int decimals = 0, count = 0;
    const char* at = text;
    for (; *at != 'e'; ++at) {
      if (*at == '.') continue;
      digits = digits * 10 + (*at - '0');
      decimals += count++ > 0;
    }
    std::from_chars(at + (at[1] == '+' ? 2 : 1), end, exponent);
    exponent -= decimals;
    if (count > kDigits) {
      const int64_t cut = PowerOfTen(count - kDigits);
      digits = (digits + cut / 2) / cut;
      exponent += count - kDigits;
    }
    while (digits != 0 && digits % 10 == 0) digits /= 10, ++exponent;
  }

  // The power of ten of its first digit.
  int Magnitude() const {
    int magnitude = exponent;
    for (int64_t rest = digits; rest >= 10; rest /= 10) ++magnitude;
    return magnitude;
  }

  // All its digits down to so many decimals, half rounded up; "" for zero.
  std::string Rounded(int decimals) const {
    const int shift = exponent + decimals;
    int64_t kept = digits;
    if (shift < 0) kept = -shift > 17 ? 0 : (digits + PowerOfTen(-shift) / 2) / PowerOfTen(-shift);
    std::string text;
    if (kept == 0) return text;
    AddNumber(text, kept);
    if (shift > 0) text.append(static_cast<std::size_t>(shift), '0');
    return text;
  }

  // As a cell without a format shows it: digits as far as they reach, beyond that with an exponent.
  void Plain(std::string& out) const {
    if (digits == 0) {
      out += '0';
      return;
    }
    std::string text;
    AddNumber(text, digits);
    const int magnitude = Magnitude();
    if (magnitude >= kDigits || magnitude < -9) {
      out += text[0];
      if (text.size() > 1) out.append(",").append(text, 1);
      out += magnitude < 0 ? "E-" : "E+";
      AddNumber(out, std::abs(magnitude), 2);
      return;
    }
    if (exponent >= 0) {
      out.append(text).append(static_cast<std::size_t>(exponent), '0');
      return;
    }
    const auto decimals = static_cast<std::size_t>(-exponent);
    if (text.size() <= decimals) text.insert(0, decimals + 1 - text.size(), '0');
    out.append(text, 0, text.size() - decimals).append(",").append(text, text.size() - decimals);
  }

  int64_t digits = 0;
  int exponent = 0;  // of ten
};

std::optional<int64_t> SerialTime(double serial, bool from1904) {
  if (!(serial >= 0 && serial < 3e6)) return std::nullopt;
  // Sheets take 1900 for a leap year.
  const double days = serial + (from1904 ? kTo1904 : serial >= 1 && serial < 60 ? 1 : 0);
  const int64_t milliseconds = std::llround(days * kDay) + Date::kZeroDays * kDay;
  if (milliseconds >= (kLastDay + 1) * kDay - 500) return std::nullopt;
  return milliseconds;
}

std::string_view NumberFormat::BuiltIn(int id) {
  struct Code {
    int from, to;
    const char* code;
  };
  // Days and amounts of money as the country has them.
  static constexpr Code kCodes[] = {
      {1, 1, "0"},
      {2, 2, "0.00"},
      {3, 3, "#,##0"},
      {4, 4, "#,##0.00"},
      {5, 6, "\"R$ \"#,##0;-\"R$ \"#,##0"},
      {7, 8, "\"R$ \"#,##0.00;-\"R$ \"#,##0.00"},
      {9, 9, "0%"},
      {10, 10, "0.00%"},
      {11, 11, "0.00E+00"},
      {14, 14, "dd/mm/yyyy"},
      {15, 15, "dd/mmm/yy"},
      {16, 16, "dd/mmm"},
      {17, 17, "mmm/yy"},
      {18, 18, "h:mm AM/PM"},
      {19, 19, "h:mm:ss AM/PM"},
      {20, 20, "hh:mm"},
      {21, 21, "hh:mm:ss"},
      {22, 22, "dd/mm/yyyy hh:mm"},
      {27, 36, "dd/mm/yyyy"},
      {37, 38, "#,##0;-#,##0"},
      {39, 40, "#,##0.00;-#,##0.00"},
      {41, 41, "#,##0;-#,##0;\"-\""},
      {42, 42, "\"R$ \"#,##0;-\"R$ \"#,##0;\"R$ -\""},
      {43, 43, "#,##0.00;-#,##0.00;\"-\""},
      {44, 44, "\"R$ \"#,##0.00;-\"R$ \"#,##0.00;\"R$ -\""},
      {45, 45, "mm:ss"},
      {46, 46, "[h]:mm:ss"},
      {47, 47, "mm:ss.0"},
      {48, 48, "##0.0E+0"},
      {50, 58, "dd/mm/yyyy"},
  };
  for (const Code& code : kCodes) {
    if (id >= code.from && id <= code.to) return code.code;
  }
  return "General";
}

NumberFormat::NumberFormat(std::string_view code) : code_(code.size() > kMostCode ? "" : code) {
  if (code_.empty()) code_ = "General";
  for (std::size_t at = 0; at <= code_.size() && sections_.size() < 4; ++at) {
    Section& section = sections_.emplace_back();
    while (at < code_.size() && code_[at] != ';') at = Next(at, section);
    Finish(section);
  }
  numbers_ = sections_.size() == 4 || sections_.back().text ? sections_.size() - 1 : sections_.size();
}

void NumberFormat::Add(Section& section, Kind kind, std::size_t at, std::size_t count, char mark) {
  section.tokens.push_back({kind, mark, static_cast<uint16_t>(at), static_cast<uint16_t>(count)});
}

// What stands in brackets at `at`; the place behind it.
std::size_t NumberFormat::Bracket(std::size_t at, Section& section) {
  const std::size_t end = code_.find(']', at);
  if (end == std::string::npos) {
    Add(section, Kind::Literal, at, 1);
    return at + 1;
  }
  const std::string_view inside = std::string_view(code_).substr(at + 1, end - at - 1);
  if (inside.starts_with('$')) {
    // A currency, and behind the hyphen a country.
    Add(section, Kind::Literal, at + 2, std::min(inside.find('-'), inside.size()) - 1);
  } else if (!inside.empty() && std::string_view("<>=").find(inside[0]) != std::string_view::npos) {
    const bool two = inside.size() > 1 && (inside[1] == '=' || inside[1] == '>');
    const std::string_view number = inside.substr(two ? 2 : 1);
    std::from_chars(number.data(), number.data() + number.size(), section.bound);
    section.condition = !two ? inside[0] : inside[1] == '>' ? '!' : inside[0] == '<' ? 'l' : 'g';
  } else if (!inside.empty() && inside.find_first_not_of(inside[0]) == std::string_view::npos) {
    const char letter = DateLetter(inside[0]);
    if (letter == 'h') Add(section, Kind::Hours, at, inside.size());
    if (letter == 'm') Add(section, Kind::Minutes, at, inside.size());
    if (letter == 's') Add(section, Kind::Seconds, at, inside.size());
  }
  return end + 1;
}

// Takes what stands at `at`; the place behind it.
std::size_t NumberFormat::Next(std::size_t at, Section& section) {
  const std::string_view rest = std::string_view(code_).substr(at);
  const char c = rest[0];
  const Kind before = section.tokens.empty() ? Kind::Literal : section.tokens.back().kind;
  const auto digit = [](char mark) { return mark == '0' || mark == '#' || mark == '?'; };

  if (c == '"') {
    const std::size_t end = std::min(code_.find('"', at + 1), code_.size());
    Add(section, Kind::Literal, at + 1, end - at - 1);
    return std::min(end + 1, code_.size());
  }
  if (c == '\\') {
    Add(section, Kind::Literal, at + 1, CharacterAt(code_, at + 1));
    return at + 1 + CharacterAt(code_, at + 1);
  }
  // A blank as wide as a character, and a character that fills the column, of which one parts a currency from
  // its amount.
  if (c == '_' || c == '*') {
    const std::size_t end = at + 1 + CharacterAt(code_, at + 1);
    if (c == '*' && at > 0 && (code_[at - 1] == '"' || code_[at - 1] == ']'))
      Add(section, Kind::Literal, at + 1, end - at - 1);
    return end;
  }
  if (c == '[') return Bracket(at, section);
  if (SameLetters(rest, "GENERAL")) {
    Add(section, Kind::General, at, 7);
    return at + 7;
  }
  if (SameLetters(rest, "AM/PM") || SameLetters(rest, "A/P")) {
    const std::size_t length = SameLetters(rest, "A/P") ? 3 : 5;
    Add(section, Kind::AmPm, at, length);
    return at + length;
  }
  if (const char letter = DateLetter(c)) {
    std::size_t count = 1;
    while (count < rest.size() && DateLetter(rest[count]) == letter) ++count;
    static constexpr Kind kKinds[] = {Kind::Year, Kind::Month, Kind::Day, Kind::Hour, Kind::Second};
    Add(section, kKinds[std::string_view("ymdhs").find(letter)], at, count);
    return at + count;
  }
  if (c == '.' && (before == Kind::Second || before == Kind::Seconds) && rest.size() > 1 && rest[1] == '0') {
    const std::size_t count = std::min(rest.find_first_not_of('0', 1), rest.size()) - 1;
    Add(section, Kind::Fraction, at, count);
    return at + 1 + count;
  }
  if (digit(c)) {
    Add(section, Kind::Digit, at, 1, c);
    return at + 1;
  }
  if (c == '.') {
    Add(section, Kind::Point, at, 1);
    return at + 1;
  }
  if (c == ',' && before == Kind::Digit) {
    // Between digits it parts the thousands, behind them it leaves three out.
    if (rest.size() > 1 && digit(rest[1])) {
      section.grouped = true;
    } else {
      section.scale -= 3;
    }
    return at + 1;
  }
  if ((c == 'E' || c == 'e') && rest.size() > 1 && (rest[1] == '+' || rest[1] == '-') &&
      before == Kind::Digit) {
    std::size_t end = 2;
    while (end < rest.size() && digit(rest[end])) ++end;
    Add(section, Kind::Exponent, at, end - 2, rest[1]);
    return at + end;
  }
  if (c == '@') {
    Add(section, Kind::Text, at, 1);
    return at + 1;
  }
  if (c == '%') section.scale += 2;
  if (c == '/' && before == Kind::Digit) section.plain = true;
  const std::size_t length = CharacterAt(code_, at);
  Add(section, Kind::Literal, at, length);
  return at + length;
}

void NumberFormat::Finish(Section& section) {
  std::vector<Token>& tokens = section.tokens;
  section.time =
      std::any_of(tokens.begin(), tokens.end(), [](const Token& t) { return t.kind >= Kind::Year; });
  if (section.time) {
    Token* hours = nullptr;
    Token* month = nullptr;
    for (Token& token : tokens) {
      if (token.kind == Kind::Digit || token.kind == Kind::Point) token.kind = Kind::Literal;
      if (token.kind < Kind::Year) continue;
      // The letter is that of minutes behind hours and before seconds.
      if (token.kind == Kind::Month && token.count <= 2) {
        if (hours != nullptr) token.kind = Kind::Minute;
        month = hours == nullptr ? &token : nullptr;
      } else {
        if ((token.kind == Kind::Second || token.kind == Kind::Seconds) && month != nullptr)
          month->kind = Kind::Minute;
        month = nullptr;
      }
      hours = token.kind == Kind::Hour || token.kind == Kind::Hours ? &token : nullptr;
    }
    return;
  }
  bool behind = false;
  for (Token& token : tokens) {
    section.text |= token.kind == Kind::Text;
    section.exponent |= token.kind == Kind::Exponent;
    // A second point is a text.
    if (token.kind == Kind::Point && behind) token.kind = Kind::Literal;
    behind |= token.kind == Kind::Point;
    if (token.kind == Kind::Digit) ++(behind ? section.decimals : section.whole);
  }
}

// The section for a number, none where each one's condition excludes it. `minus` is whether it wants a sign
// of ours.
const NumberFormat::Section* NumberFormat::Choose(double number, bool& minus) const {
  minus = number < 0;
  for (std::size_t i = 0; i < numbers_; ++i) {
    const Section& section = sections_[i];
    bool fits = true, negative = false;
    if (section.condition != 0) {
      const double bound = section.bound;
      const char c = section.condition;
      fits = c == '<'   ? number < bound
             : c == 'l' ? number <= bound
             : c == '>' ? number > bound
             : c == 'g' ? number >= bound
             : c == '=' ? number == bound
                        : number != bound;
      negative = (c == '<' || c == 'l') && bound <= 0;
    } else if (i == 0) {
      fits = numbers_ == 1 || (numbers_ == 2 ? number >= 0 : number > 0);
    } else if (i + 1 < numbers_) {
      fits = number < 0;
      negative = true;
    } else {
      negative = numbers_ == 2 && sections_[0].condition == 0;
    }
    if (!fits) continue;
    minus &= !negative;
    return &section;
  }
  return nullptr;
}

void NumberFormat::Number(double number, std::string& out) const {
  bool minus = false;
  const Section* section = Choose(number, minus);
  const Decimal decimal(number);
  if (section == nullptr || section->text || section->plain || section->time) {
    if (number < 0 && decimal.digits != 0) out += '-';
    decimal.Plain(out);
  } else {
    Write(*section, decimal, minus, out);
  }
}

void NumberFormat::Write(const Section& section, Decimal decimal, bool minus, std::string& out) const {
  decimal.exponent += section.scale;
  int power = 0;
  if (section.exponent && decimal.digits != 0) {
    // As many digits stand before the point, so the exponent is a multiple of their count.
    const int group = std::max(section.whole, 1);
    const auto shift = [&](int by) {
      power += by;
      decimal.exponent -= by;
    };
    const int magnitude = decimal.Magnitude();
    shift((magnitude >= 0 ? magnitude / group : -((group - 1 - magnitude) / group)) * group);
    if (decimal.Rounded(section.decimals).size() > static_cast<std::size_t>(group + section.decimals))
      shift(group);
  }

  std::string digits = decimal.Rounded(section.decimals);
  const bool general = std::any_of(section.tokens.begin(), section.tokens.end(),
                                   [](const Token& t) { return t.kind == Kind::General; });
  // What is shown as zero has no sign.
  if (minus && (!digits.empty() || general || section.whole + section.decimals == 0)) out += '-';
  const auto decimals = static_cast<std::size_t>(section.decimals);
  if (digits.size() < decimals) digits.insert(0, decimals - digits.size(), '0');
  const std::size_t whole = digits.size() - decimals;

  bool begun = false;
  const auto place = [&](std::size_t position, char mark) {
    if (position < whole) {
      out += digits[whole - 1 - position];
    } else if (mark == '0') {
      out += '0';
    } else {
      return;
    }
    begun = true;
    if (section.grouped && position > 0 && position % 3 == 0) out += '.';
  };
  // Those for which there are fewer places than digits stand before the first one.
  const auto before = [&](std::size_t places) {
    for (std::size_t position = whole; position > places; --position) place(position - 1, '0');
  };

  auto left = static_cast<std::size_t>(section.whole);
  std::size_t fraction = whole;
  bool behind = false;
  for (const Token& token : section.tokens) {
    switch (token.kind) {
      case Kind::Digit:
        if (behind) {
          const bool zeros = digits.find_first_not_of('0', fraction) == std::string::npos;
          if (token.mark == '0' || !zeros) out += digits[fraction];
          ++fraction;
        } else {
          if (!begun) before(left);
          place(--left, token.mark);
        }
        break;
      case Kind::Point:
        if (section.whole == 0) before(0);
        out += ',';
        behind = true;
        break;
      case Kind::Exponent:
        out += 'E';
        if (power < 0 || token.mark == '+') out += power < 0 ? '-' : '+';
        AddNumber(out, std::abs(power), token.count);
        break;
      case Kind::General:
        decimal.Plain(out);
        break;
      default:
        out.append(code_, token.at, token.count);
    }
  }
}

void NumberFormat::Time(int64_t milliseconds, double serial, std::string& out) const {
  const std::vector<Token>& tokens = sections_[0].tokens;
  const auto has = [&](Kind kind) {
    return std::any_of(tokens.begin(), tokens.end(), [&](const Token& t) { return t.kind == kind; });
  };
  const bool fraction = has(Kind::Fraction), twelve = has(Kind::AmPm);
  const auto whole = [&](int64_t ms) {
    const int64_t up = fraction ? ms : ms + 500;
    return (up >= 0 ? up : up - 999) / 1000;
  };
  const DateTime time = DateTime::FromSeconds(whole(milliseconds));
  const Date day = time.Day();
  const int64_t second = time.Seconds() - int64_t{day.Days()} * 86400, hour = second / 3600;
  const int64_t elapsed = whole(std::llround(serial * kDay));

  for (const Token& token : tokens) {
    const std::size_t width = token.count;
    switch (token.kind) {
      case Kind::Year:
        AddNumber(out, width <= 2 ? day.Year() % 100 : day.Year(), width <= 2 ? 2 : 4);
        break;
      case Kind::Month:
        if (width <= 2) {
          AddNumber(out, day.Month(), width);
        } else {
          const std::string_view name = kMonths[static_cast<std::size_t>(day.Month()) - 1];
          out += width == 4 ? name : CutChars(name, width == 3 ? 3 : 1);
        }
        break;
      case Kind::Day:
        if (width <= 2) {
          AddNumber(out, day.Day(), width);
        } else {
          const std::string_view name = kWeekDays[static_cast<std::size_t>(day.WeekDay())];
          out += width == 3 ? CutChars(name, 3) : name;
        }
        break;
      case Kind::Hour:
        AddNumber(out, twelve ? (hour + 11) % 12 + 1 : hour, std::min<std::size_t>(width, 2));
        break;
      case Kind::Minute:
        AddNumber(out, second / 60 % 60, std::min<std::size_t>(width, 2));
        break;
      case Kind::Second:
        AddNumber(out, second % 60, std::min<std::size_t>(width, 2));
        break;
      case Kind::Fraction: {
        std::string digits;
        AddNumber(digits, (milliseconds % 1000 + 1000) % 1000, 3);
        digits.resize(width, '0');
        out.append(",").append(digits);
        break;
      }
      case Kind::AmPm:
        out += hour < 12 ? (width == 3 ? "A" : "AM") : (width == 3 ? "P" : "PM");
        break;
      case Kind::Hours:
        AddNumber(out, elapsed / 3600, width);
        break;
      case Kind::Minutes:
        AddNumber(out, elapsed / 60, width);
        break;
      case Kind::Seconds:
        AddNumber(out, elapsed, width);
        break;
      default:
        out.append(code_, token.at, token.count);
    }
  }
}

void NumberFormat::Text(std::string_view text, std::string& out) const {
  if (!ShowsText()) {
    out += text;
    return;
  }
  bool taken = false;
  for (const Token& token : sections_.back().tokens) {
    if (token.kind == Kind::Literal) out.append(code_, token.at, token.count);
    if (token.kind != Kind::Text || taken) continue;
    out += text;
    taken = true;
  }
}

}  // namespace orv
