#include "toolkit/currency.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kTooLarge = "O valor é grande demais para ser calculado.";

// Rounds half away from zero to a multiple of `step`.
int64_t RoundTo(int64_t raw, int64_t step) {
  const int64_t rest = raw % step;
  int64_t down = raw - rest;
  const int64_t twice = 2 * (rest < 0 ? -rest : rest);
  if (twice >= step && __builtin_add_overflow(down, raw < 0 ? -step : step, &down))
    throw RangeError(kTooLarge);
  return down;
}

int64_t FromReal(long double amount) {
  const long double scaled = std::round(amount * Currency::kScale);
  if (!(std::fabs(scaled) < 9.2233720368547758e18L)) throw RangeError(kTooLarge);
  return static_cast<int64_t>(scaled);
}

// Digits with at most four decimals after `point`; false when the text is anything else.
bool ParseDigits(std::string_view text, char point, int64_t& raw) {
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  int decimals = -1;
  int digits = 0;
  int64_t value = 0;
  for (const char c : text) {
    if (c == point && decimals < 0) {
      decimals = 0;
      continue;
    }
    if (c < '0' || c > '9') return false;
    if (decimals == 4) return false;
    if (__builtin_mul_overflow(value, 10, &value) || __builtin_add_overflow(value, c - '0', &value))
      return false;
    ++digits;
    if (decimals >= 0) ++decimals;
  }
  if (digits == 0) return false;
  for (int i = decimals < 0 ? 0 : decimals; i < 4; ++i) {
    if (__builtin_mul_overflow(value, 10, &value)) return false;
  }
  raw = negative ? -value : value;
  return true;
}

// Takes out the thousand points of "1.234.567,89"; false when one stands in a wrong place.
bool DropThousands(std::string_view text, std::string& plain) {
  if (text.find('.') == std::string_view::npos) {
    plain = text;
    return true;
  }
  const std::size_t comma = text.find(',');
  const std::string_view whole = text.substr(0, comma);
  const bool sign = !whole.empty() && (whole.front() == '-' || whole.front() == '+');
  const auto groups = Split(whole.substr(sign ? 1 : 0), ".");
  if (groups[0].empty() || groups[0].size() > 3) return false;
  for (std::size_t i = 1; i < groups.size(); ++i) {
    if (groups[i].size() != 3) return false;
  }
  plain = std::string(sign ? whole.substr(0, 1) : std::string_view());
  plain += Join(groups, "");
  if (comma != std::string_view::npos) plain += text.substr(comma);
  return true;
}

bool TryBrazil(std::string_view text, int64_t& raw) {
  std::string plain;
  return DropThousands(Trim(text), plain) && ParseDigits(plain, ',', raw);
}

std::string Written(int64_t raw, int decimals, char point, bool thousands) {
  const bool negative = raw < 0;
  const uint64_t size = negative ? 0 - static_cast<uint64_t>(raw) : static_cast<uint64_t>(raw);
  std::string digits = std::to_string(size / Currency::kScale);
  if (thousands) {
    for (int at = static_cast<int>(digits.size()) - 3; at > 0; at -= 3)
      digits.insert(static_cast<std::size_t>(at), 1, '.');
  }
  std::string fraction = std::to_string(Currency::kScale + size % Currency::kScale).substr(1);
  fraction.resize(static_cast<std::size_t>(decimals));
  return (negative ? "-" : "") + digits + point + fraction;
}

}  // namespace

Currency Currency::FromCents(int64_t cents) {
  int64_t raw = 0;
  if (__builtin_mul_overflow(cents, 100, &raw)) throw RangeError(kTooLarge);
  return FromRaw(raw);
}

Currency Currency::FromDouble(double amount) {
  // The shortest decimal text of a double is what its writer meant: 1.00005 rounds up though its binary form
  // lies below.
  if (!std::isfinite(amount)) throw RangeError(kTooLarge);
  const double nudged =
      amount + std::copysign(std::fabs(amount) * std::numeric_limits<double>::epsilon(), amount);
  return FromRaw(FromReal(nudged));
}

Currency Currency::ParseBrazil(std::string_view text) {
  int64_t raw = 0;
  if (!TryBrazil(text, raw)) throw ConversionError(std::string(text), "um valor válido");
  return FromRaw(raw);
}

Currency Currency::ParseBrazilOr(std::string_view text, Currency fallback) {
  int64_t raw = 0;
  return TryBrazil(text, raw) ? FromRaw(raw) : fallback;
}

Currency Currency::ParseNeutral(std::string_view text) {
  int64_t raw = 0;
  if (!ParseDigits(Trim(text), '.', raw)) throw ConversionError(std::string(text), "um valor válido");
  return FromRaw(raw);
}

std::string Currency::Brazil() const { return Written(Round2().raw_, 2, ',', true); }
std::string Currency::BrazilPlain() const { return Written(Round2().raw_, 2, ',', false); }
std::string Currency::Neutral() const { return Written(raw_, 4, '.', false); }
std::string Currency::Format2() const { return Written(Round2().raw_, 2, '.', false); }

Currency Currency::Round2() const { return FromRaw(RoundTo(raw_, 100)); }
int64_t Currency::Cents() const { return Round2().raw_ / 100; }

Currency Currency::operator-() const {
  int64_t raw = 0;
  if (__builtin_sub_overflow(int64_t{0}, raw_, &raw)) throw RangeError(kTooLarge);
  return FromRaw(raw);
}

Currency& Currency::operator+=(Currency other) {
  if (__builtin_add_overflow(raw_, other.raw_, &raw_)) throw RangeError(kTooLarge);
  return *this;
}

Currency& Currency::operator-=(Currency other) {
  if (__builtin_sub_overflow(raw_, other.raw_, &raw_)) throw RangeError(kTooLarge);
  return *this;
}

Currency Currency::Times(Currency a, double factor) {
  // A product with a decimal factor such as 33.33 must not lose the half cent to the factor's binary form.
  const long double product = static_cast<long double>(a.raw_) * factor / kScale;
  return FromRaw(FromReal(product * (1.0L + std::numeric_limits<double>::epsilon())));
}

Currency Currency::Over(Currency a, double divisor) {
  if (divisor == 0) throw RangeError("Divisão por zero.");
  const long double quotient = static_cast<long double>(a.raw_) / divisor / kScale;
  return FromRaw(FromReal(quotient * (1.0L + std::numeric_limits<double>::epsilon())));
}

double RoundFloat2(double number) {
  const double nudged =
      number + std::copysign(std::fabs(number) * std::numeric_limits<double>::epsilon(), number);
  return std::round(nudged * 100) / 100;
}

}  // namespace orv
