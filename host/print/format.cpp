#include "host/print/format.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::array<std::string_view, 7> kDays{
    "domingo", "segunda-feira", "terça-feira", "quarta-feira", "quinta-feira", "sexta-feira", "sábado"};
constexpr std::array<std::string_view, 12> kMonths{"janeiro",  "fevereiro", "março",    "abril",
                                                   "maio",     "junho",     "julho",    "agosto",
                                                   "setembro", "outubro",   "novembro", "dezembro"};

std::string Digits(int64_t number, int width) {
  std::string text = std::to_string(number);
  while (static_cast<int>(text.size()) < width) text.insert(text.begin(), '0');
  return text;
}

// A number without sign, "1234.50", in the Brazilian form.
std::string Brazilian(std::string text, bool points) {
  const std::size_t point = text.find('.');
  std::string whole = text.substr(0, point);
  if (points) {
    for (int at = static_cast<int>(whole.size()) - 3; at > 0; at -= 3)
      whole.insert(static_cast<std::size_t>(at), ".");
  }
  return point == std::string::npos ? whole : whole + "," + text.substr(point + 1);
}

std::string Number(const Value& value, std::string_view format) {
  const std::size_t point = format.find('.');
  const auto decimals = point == std::string_view::npos
                            ? 0
                            : static_cast<int>(std::min<std::size_t>(format.size() - point - 1, 8));
  Int128 power = 1;
  for (int i = 0; i < decimals; ++i) power *= 10;
  // A float beyond that has no decimals.
  const double size = value.AsFloat();
  if (std::abs(size) >= 1e26) return Brazilian(FloatText(size), false);
  const Int128 rounded = value.Kind() == ValueKind::Currency
                             ? RoundedQuotient(value.AsCurrency().Raw() * power, Currency::kScale)
                             : RoundedProduct(power, size);
  std::string text = DigitsOf(rounded < 0 ? -rounded : rounded);
  while (static_cast<int>(text.size()) <= decimals) text.insert(text.begin(), '0');
  if (decimals > 0) text.insert(text.size() - static_cast<std::size_t>(decimals), ".");
  return (rounded < 0 ? "-" : "") + Brazilian(text, format.find(',') != std::string_view::npos);
}

std::string Day(const Value& value, std::string_view format) {
  const Date day = value.AsDate();
  if (day.Empty()) return "";
  const DateTime time = value.Kind() == ValueKind::DateTime ? value.AsDateTime() : DateTime(day, 0, 0, 0);
  const int64_t second = ((time.Seconds() % 86400) + 86400) % 86400;
  std::string text;
  for (std::size_t at = 0; at < format.size();) {
    const char c = format[at];
    const std::size_t end = std::min(format.find_first_not_of(c, at), format.size());
    const auto count = static_cast<int>(end - at);
    const auto week_day = static_cast<std::size_t>(day.WeekDay());
    const auto month = static_cast<std::size_t>(day.Month() - 1);
    switch (c) {
      case 'd':
        if (count >= 4) {
          text += kDays[week_day];
        } else if (count == 3) {
          text += CutChars(kDays[week_day], 3);
        } else {
          text += Digits(day.Day(), count);
        }
        break;
      case 'm':
        if (count >= 4) {
          text += kMonths[month];
        } else if (count == 3) {
          text += CutChars(kMonths[month], 3);
        } else {
          text += Digits(day.Month(), count);
        }
        break;
      case 'y':
      case 'a':
        text += count > 2 ? Digits(day.Year(), 4) : Digits(day.Year() % 100, 2);
        break;
      case 'h':
        text += Digits(second / 3600, count);
        break;
      case 'n':
        text += Digits(second / 60 % 60, count);
        break;
      case 's':
        text += Digits(second % 60, count);
        break;
      default:
        text += format.substr(at, end - at);
    }
    at = end;
  }
  return text;
}

}  // namespace

std::string FormatValue(const Value& value, std::string_view format) {
  switch (value.Kind()) {
    case ValueKind::Integer:
    case ValueKind::Float:
    case ValueKind::Currency:
      if (format.find_first_of("0#") != std::string_view::npos) return Number(value, format);
      break;
    case ValueKind::Date:
    case ValueKind::DateTime:
      if (format.find_first_of("dmyahns") != std::string_view::npos) return Day(value, format);
      break;
    default:
      break;
  }
  return value.AsString();
}

}  // namespace orv
