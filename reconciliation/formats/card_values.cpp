#include "reconciliation/formats/card_values.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "reconciliation/formats/statement.h"
#include "toolkit/text.h"

namespace orv {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Takes one to `most` digits from the front.
bool TakeNumber(std::string_view& text, std::size_t most, int& number) {
  std::size_t digits = 0;
  number = 0;
  for (; digits < std::min(most, text.size()) && IsDigit(text[digits]); ++digits)
    number = number * 10 + (text[digits] - '0');
  text.remove_prefix(digits);
  return digits > 0;
}

bool TakeSign(std::string_view& text, char sign) {
  if (text.empty() || text.front() != sign) return false;
  text.remove_prefix(1);
  return true;
}

bool TakeDay(std::string_view& text, Date& date) {
  int day = 0, month = 0, year = 0;
  if (!TakeNumber(text, 2, day) || !TakeSign(text, '/')) return false;
  if (!TakeNumber(text, 2, month) || !TakeSign(text, '/')) return false;
  const std::size_t before = text.size();
  if (!TakeNumber(text, 4, year) || before - text.size() != 4 || !Date::Exists(year, month, day))
    return false;
  date = Date(year, month, day);
  return true;
}

constexpr std::pair<std::string_view, std::string_view> kStatus[] = {
    {"00", "Agendado"}, {"01", "Pago"}, {"02", "Enviado para o banco"}, {"03", "A confirmar"}};

DateTime Counted(DateTime time) { return CountsAsDay(time) ? time : DateTime(); }

}  // namespace

Currency CardAmount(std::string_view text, unsigned marks) {
  constexpr std::size_t kNone = std::string_view::npos;
  const std::size_t reais = marks & kNoReais ? text.find("R$ ") : kNone;
  const std::size_t point = marks & (kNoPoint | kPointIsComma) ? text.find('.') : kNone;
  const std::size_t minus = marks & kNoMinus ? text.find('-') : kNone;

  enum { Before, Whole, Decimals, After } at = Before;
  bool negative = false, any = false;
  int64_t raw = 0;
  int decimals = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (i == reais) {
      i += 2;
      continue;
    }
    if (i == minus || (i == point && (marks & kNoPoint))) continue;
    if (i == point) c = ',';
    if (c == ' ' || c == '\t') {
      if (at != Before) at = After;
    } else if ((c == '-' || c == '+') && at == Before) {
      negative = c == '-';
      at = Whole;
    } else if (c == ',' && at <= Whole) {
      at = Decimals;
    } else if (IsDigit(c) && at != After) {
      if (at == Before) at = Whole;
      any = true;
      if (at == Whole) {
        // What has grown too large stays so.
        raw = std::min(raw * 10 + (c - '0'), int64_t{1} << 48);
      } else if (decimals < 5 && ++decimals < 5) {
        raw = raw * 10 + (c - '0');
      } else if (decimals == 5) {
        raw += c >= '5';
        ++decimals;
      }
    } else {
      return {};
    }
  }
  if (!any) return {};
  Int128 amount = raw;
  for (; decimals < 4; ++decimals) amount *= 10;
  const Currency size = Currency::FromRaw(amount);
  if (size > kMaxLineAmount) return {};
  return negative ? -size : size;
}

Currency CardDigits(std::string_view text, std::size_t width) {
  int64_t cents = 0;
  if (text.size() != width || !std::all_of(text.begin(), text.end(), IsDigit)) return {};
  for (const char c : text) cents = cents * 10 + (c - '0');
  return Currency::FromCents(cents);
}

int CardInteger(std::string_view text, int otherwise) {
  text = Trim(text);
  if (text.starts_with('+') && text.size() > 1 && IsDigit(text[1])) text.remove_prefix(1);
  int number = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
  return fault == std::errc() && end == text.data() + text.size() ? number : otherwise;
}

DateTime CardDay(std::string_view text) {
  text = Trim(text);
  Date day;
  return TakeDay(text, day) && text.empty() ? Counted(DateTime(day, 0, 0, 0)) : DateTime();
}

DateTime CardMoment(std::string_view text) {
  text = Trim(text);
  Date day;
  if (!TakeDay(text, day)) return {};
  if (text.empty()) return Counted(DateTime(day, 0, 0, 0));
  if (text.front() != ' ') return {};
  text = Trim(text);
  int hour = 0, minute = 0, second = 0;
  if (!TakeNumber(text, 2, hour) || !TakeSign(text, ':') || !TakeNumber(text, 2, minute)) return {};
  if (TakeSign(text, ':') && !TakeNumber(text, 2, second)) return {};
  if (!text.empty() || hour > 23 || minute > 59 || second > 59) return {};
  return Counted(DateTime(day, hour, minute, second));
}

bool CountsAsDay(DateTime time) { return time.Seconds() >= (int64_t{Date::kZeroDays} + 1) * 86400; }

std::string_view CieloStatus(std::string_view codigo) {
  for (const auto& [known, nome] : kStatus) {
    if (known == codigo) return nome;
  }
  return "";
}

std::string_view CieloStatusCode(std::string_view nome) {
  for (const auto& [codigo, known] : kStatus) {
    if (known == nome) return codigo;
  }
  return "";
}

CharColumns::CharColumns(std::string_view line) : line_(line) {
  // No layout reaches farther.
  const std::string_view head = line.substr(0, 1024);
  unsigned char all = 0;
  for (const char c : head) all |= static_cast<unsigned char>(c);
  const auto high = [](char c) { return static_cast<unsigned char>(c) >= 0x80; };
  plain_ = all < 0x80 ? head.size()
                      : static_cast<std::size_t>(std::find_if(head.begin(), head.end(), high) - head.begin());
}

std::string_view CharColumns::At(std::size_t first, std::size_t last) const {
  const std::size_t count = last - first + 1;
  if (last <= plain_) return line_.substr(first - 1, count);
  const std::size_t begin = std::min(first - 1, plain_);
  std::string_view rest = line_.substr(begin);
  rest.remove_prefix(CutChars(rest, first - 1 - begin).size());
  return CutChars(rest, count);
}

}  // namespace orv
