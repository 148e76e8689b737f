// Money: fixed point, four decimals, in 64 bits.
#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace orv {

class Currency {
 public:
  static constexpr int64_t kScale = 10000;

  constexpr Currency() = default;
  // Whole units of money.
  constexpr Currency(int units) : raw_(int64_t{units} * kScale) {}
  // Ten-thousandths.
  static constexpr Currency FromRaw(int64_t raw) {
    Currency c;
    c.raw_ = raw;
    return c;
  }
  static Currency FromCents(int64_t cents);
  // Rounds half away from zero to four decimals. Raises RangeError outside 64 bits or for a NaN.
  static Currency FromDouble(double amount);

  // "1234,56", "1.234,56", "-3", blanks around allowed; at most four decimals.
  // Raises ConversionError.
  static Currency ParseBrazil(std::string_view text);
  // The same, `fallback` for what isn't an amount (the empty text too).
  static Currency ParseBrazilOr(std::string_view text, Currency fallback);
  // "1234.56", the neutral and SQL form. Raises ConversionError.
  static Currency ParseNeutral(std::string_view text);

  constexpr int64_t Raw() const { return raw_; }
  double ToDouble() const { return static_cast<double>(raw_) / kScale; }

  // "1.234,56": two decimals, rounded half away from zero, thousand points.
  std::string Brazil() const;
  // "1234,56": as `Brazil` without thousand points.
  std::string BrazilPlain() const;
  // "1234.5600": four decimals always.
  std::string Neutral() const;
  // "0.00": two decimals with a point, rounded half away from zero.
  std::string Format2() const;

  // Rounded half away from zero to two decimals: the round trip through "0.00".
  Currency Round2() const;
  // Whole cents of `Round2`.
  int64_t Cents() const;

  Currency Abs() const { return raw_ < 0 ? -*this : *this; }
  bool IsZero() const { return raw_ == 0; }

  // Arithmetic raises RangeError on overflow.
  Currency operator-() const;
  Currency& operator+=(Currency other);
  Currency& operator-=(Currency other);
  friend Currency operator+(Currency a, Currency b) { return a += b; }
  friend Currency operator-(Currency a, Currency b) { return a -= b; }
  // Product with a quantity, a rate or a count, rounded half away from zero to four decimals.
  friend Currency operator*(Currency a, double factor) { return Times(a, factor); }
  friend Currency operator*(double factor, Currency a) { return Times(a, factor); }
  // Quotient, rounded half away from zero to four decimals. Raises RangeError on zero.
  friend Currency operator/(Currency a, double divisor) { return Over(a, divisor); }

  friend constexpr auto operator<=>(Currency a, Currency b) = default;

 private:
  static Currency Times(Currency a, double factor);
  static Currency Over(Currency a, double divisor);

  int64_t raw_ = 0;
};

// Rounds half away from zero to two decimals as a decimal reader sees the number: the round trip of a
// float through "0.00".
double RoundFloat2(double number);

}  // namespace orv
