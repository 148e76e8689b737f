#include "toolkit/currency.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kTooLarge = "O valor é grande demais para ser calculado.";

// The largest amount that anybody types.
constexpr int64_t kMostTyped = 9'999'999'999'999'900;

// The largest power of ten within 128 bits.
constexpr int kMostZeros = 38;

constexpr Int128 PowerOfTen(int zeros) {
  Int128 power = 1;
  for (; zeros > 0; --zeros) power *= 10;
  return power;
}

// An amount fits into the 14 bytes that a `Value` has for it.
constexpr Int128 kMostRaw = PowerOfTen(33);

Int128 Scaled(Int128 whole, int zeros) {
  Int128 scaled = 0;
  if (whole == 0) return 0;
  if (zeros > kMostZeros || __builtin_mul_overflow(whole, PowerOfTen(zeros), &scaled))
    throw RangeError(kTooLarge);
  return scaled;
}

// The shortest decimal text that reads back as the float, up to 17 digits: what its writer meant.
struct Decimal {
  int64_t digits = 0;
  int exponent = 0;  // of ten
};

Decimal Shortest(double number) {
  if (!std::isfinite(number)) throw RangeError(kTooLarge);
  char text[40];
  const char* const end = std::to_chars(text, text + sizeof text, number, std::chars_format::scientific).ptr;
  Decimal decimal;
  const char* at = text + (text[0] == '-');
  int decimals = 0;
  for (bool behind = false; *at != 'e'; ++at) {
    if (*at == '.') {
      behind = true;
    } else {
      decimal.digits = decimal.digits * 10 + (*at - '0');
      decimals += behind;
    }
  }
  // The exponent always has a sign, and a plus isn't read.
  std::from_chars(at + (at[1] == '+' ? 2 : 1), end, decimal.exponent);
  decimal.exponent -= decimals;
  if (text[0] == '-') decimal.digits = -decimal.digits;
  return decimal;
}

// Digits with at most four decimals after `point`; false when the text is anything else. What is beyond all
// bounds comes out as beyond them.
bool ParseDigits(std::string_view text, char point, Int128& raw) {
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  int decimals = -1;
  int digits = 0;
  Int128 value = 0;
  for (const char c : text) {
    if (c == point && decimals < 0) {
      decimals = 0;
      continue;
    }
    if (c < '0' || c > '9') return false;
    if (decimals == 4) return false;
    value = std::min(value * 10 + (c - '0'), kMostRaw * 10);
    ++digits;
    if (decimals >= 0) ++decimals;
  }
  if (digits == 0) return false;
  for (int i = decimals < 0 ? 0 : decimals; i < 4; ++i) value = std::min(value * 10, kMostRaw * 10);
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
  // "0.123" is no thousand, whatever it was meant to be.
  if (groups[0].empty() || groups[0].size() > 3 || groups[0][0] == '0') return false;
  for (std::size_t i = 1; i < groups.size(); ++i) {
    if (groups[i].size() != 3) return false;
  }
  plain = std::string(sign ? whole.substr(0, 1) : std::string_view());
  plain += Join(groups, "");
  if (comma != std::string_view::npos) plain += text.substr(comma);
  return true;
}

bool ReadBrazil(std::string_view text, Int128& raw) {
  std::string plain;
  return DropThousands(Trim(text), plain) && ParseDigits(plain, ',', raw);
}

bool Bounded(Int128 raw) { return raw >= -kMostRaw && raw <= kMostRaw; }

bool TryBrazil(std::string_view text, Int128& raw) { return ReadBrazil(text, raw) && Bounded(raw); }

std::string Written(Int128 raw, int decimals, char point, bool thousands) {
  const bool negative = raw < 0;
  const Int128 size = negative ? -raw : raw;
  std::string digits = DigitsOf(size / Currency::kScale);
  if (thousands) {
    for (int at = static_cast<int>(digits.size()) - 3; at > 0; at -= 3)
      digits.insert(static_cast<std::size_t>(at), 1, '.');
  }
  std::string fraction = DigitsOf(Currency::kScale + size % Currency::kScale).substr(1);
  fraction.resize(static_cast<std::size_t>(decimals));
  return (negative ? "-" : "") + digits + point + fraction;
}

}  // namespace

Int128 RoundedQuotient(Int128 dividend, Int128 divisor) {
  const Int128 down = dividend / divisor, rest = dividend % divisor;
  const Int128 size = divisor < 0 ? -divisor : divisor, left = rest < 0 ? -rest : rest;
  if (left < size - left) return down;
  return (dividend < 0) == (divisor < 0) ? down + 1 : down - 1;
}

Int128 RoundedProduct(Int128 whole, double factor) {
  const Decimal decimal = Shortest(factor);
  Int128 product = 0;
  if (__builtin_mul_overflow(whole, Int128{decimal.digits}, &product)) throw RangeError(kTooLarge);
  if (decimal.exponent >= 0) return Scaled(product, decimal.exponent);
  return -decimal.exponent > kMostZeros ? 0 : RoundedQuotient(product, PowerOfTen(-decimal.exponent));
}

double RoundFloat(double number, int decimals) {
  if (!std::isfinite(number)) return number;
  const Decimal decimal = Shortest(number);
  const int dropped = -decimal.exponent - decimals;
  if (dropped <= 0) return number;
  const Int128 kept = dropped > kMostZeros ? 0 : RoundedQuotient(decimal.digits, PowerOfTen(dropped));
  const std::string text = DigitsOf(kept) + "e-" + std::to_string(decimals);
  double rounded = 0;
  std::from_chars(text.data(), text.data() + text.size(), rounded);
  return rounded;
}

std::string DigitsOf(Int128 whole) {
  std::string digits;
  for (Int128 rest = whole; rest != 0 || digits.empty(); rest /= 10) {
    const auto digit = static_cast<int>(rest % 10);
    digits.insert(digits.begin(), static_cast<char>('0' + (digit < 0 ? -digit : digit)));
  }
  return whole < 0 ? "-" + digits : digits;
}

Currency Currency::Checked(Int128 raw) {
  if (!Bounded(raw)) throw RangeError(kTooLarge);
  return FromRaw(raw);
}

Currency Currency::FromCents(int64_t cents) { return FromRaw(Int128{cents} * (kScale / 100)); }

Currency Currency::FromDouble(double amount) { return Checked(RoundedProduct(kScale, amount)); }

Currency Currency::ParseBrazil(std::string_view text) {
  Int128 raw = 0;
  if (!TryBrazil(text, raw)) throw ConversionError(std::string(text), "um valor válido");
  return FromRaw(raw);
}

Currency Currency::ParseBrazilOr(std::string_view text, Currency fallback) {
  Int128 raw = 0;
  return TryBrazil(text, raw) ? FromRaw(raw) : fallback;
}

Currency Currency::ParseTyped(std::string_view text, int decimals) {
  ORV_ASSERT(decimals >= 0 && decimals <= 4);
  Int128 raw = 0;
  if (!ReadBrazil(text, raw) || raw % PowerOfTen(4 - decimals) != 0) {
    const std::string_view form("1.234,5678");
    const auto shown = static_cast<std::size_t>(decimals > 0 ? 6 + decimals : 5);
    throw ConversionError(std::string(Trim(text)),
                          "um valor. Escreva como " + std::string(form.substr(0, shown)));
  }
  if (!FromRaw(raw).FitsField()) {
    throw RangeError("\"" + std::string(Trim(text)) + "\" é grande demais. O maior valor é " +
                     FromRaw(kMostTyped).Brazil() + ".");
  }
  return FromRaw(raw);
}

Currency Currency::ParseNeutral(std::string_view text) {
  Int128 raw = 0;
  if (!ParseDigits(Trim(text), '.', raw) || !Bounded(raw))
    throw ConversionError(std::string(text), "um valor válido");
  return FromRaw(raw);
}

std::string Currency::Brazil(int decimals) const {
  ORV_ASSERT(decimals >= 1 && decimals <= 4);
  const Int128 unit = PowerOfTen(4 - decimals);
  return Written(RoundedQuotient(raw_, unit) * unit, decimals, ',', true);
}
std::string Currency::Neutral() const { return Written(raw_, 4, '.', false); }
std::string Currency::Format2() const { return Written(Round2().raw_, 2, '.', false); }

bool Currency::FitsField() const { return raw_ >= -Int128{kMostTyped} && raw_ <= kMostTyped; }

Currency Currency::Round2() const { return FromRaw(RoundedQuotient(raw_, 100) * 100); }
int64_t Currency::Cents() const {
  const Int128 cents = RoundedQuotient(raw_, 100);
  if (cents != static_cast<int64_t>(cents)) throw RangeError(kTooLarge);
  return static_cast<int64_t>(cents);
}

Currency& Currency::operator+=(Currency other) { return *this = Checked(raw_ + other.raw_); }
Currency& Currency::operator-=(Currency other) { return *this = Checked(raw_ - other.raw_); }

Currency Currency::Times(Currency a, double factor) { return Checked(RoundedProduct(a.raw_, factor)); }

Currency Currency::Over(Currency a, double divisor) {
  if (divisor == 0) throw RangeError("Divisão por zero.");
  const Decimal decimal = Shortest(divisor);
  if (decimal.exponent <= 0)
    return Checked(RoundedQuotient(Scaled(a.raw_, -decimal.exponent), decimal.digits));
  Int128 whole = 0;
  const bool beyond = decimal.exponent > kMostZeros ||
                      __builtin_mul_overflow(PowerOfTen(decimal.exponent), Int128{decimal.digits}, &whole);
  return beyond ? Currency() : FromRaw(RoundedQuotient(a.raw_, whole));
}

}  // namespace orv
