// Money: fixed point, four decimals. And the one way in which the house rounds: half away from zero, as who
// reads the decimal digits sees the number.
#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace orv {

__extension__ using Int128 = __int128;

// A quotient of whole numbers, rounded half away from zero. The divisor isn't zero.
Int128 RoundedQuotient(Int128 dividend, Int128 divisor);
// So many times a whole number, rounded half away from zero; the factor counts as its shortest decimal text.
// Raises RangeError beyond 128 bits or for a factor that isn't finite.
Int128 RoundedProduct(Int128 whole, double factor);
// A float rounded to 0 to 15 decimals. What isn't finite stays.
double RoundFloat(double number, int decimals);
// The digits, with a sign before a negative one.
std::string DigitsOf(Int128 whole);

// Wide enough for a sum of any amounts that a table can hold: 29 digits before the decimals.
class Currency {
 public:
  static constexpr int64_t kScale = 10000;

  constexpr Currency() = default;
  // Whole units of money.
  constexpr Currency(int units) : raw_(int64_t{units} * kScale) {}
  // Ten-thousandths.
  static constexpr Currency FromRaw(Int128 raw) {
    Currency c;
    c.raw_ = raw;
    return c;
  }
  static Currency FromCents(int64_t cents);
  // Rounds to four decimals. Raises RangeError where the amount is too large, and for a NaN.
  static Currency FromDouble(double amount);

  // "1234,56", "1.234,56", "-3", blanks around allowed; at most four decimals.
  // Raises ConversionError.
  static Currency ParseBrazil(std::string_view text);
  // The same, `fallback` for what isn't an amount (the empty text too).
  static Currency ParseBrazilOr(std::string_view text, Currency fallback);
  // What a person typed into a field of so many decimals, 0 to 4. Further decimals must be zeros. Raises
  // ConversionError, which shows how to write it, and RangeError for an amount that no field takes.
  static Currency ParseTyped(std::string_view text, int decimals = 2);
  // "1234.56", the neutral and SQL form. Raises ConversionError.
  static Currency ParseNeutral(std::string_view text);

  // Within 999.999.999.999,99, as every field takes it. What is larger comes from elsewhere, by mistake.
  bool FitsField() const;

  constexpr Int128 Raw() const { return raw_; }
  double ToDouble() const { return static_cast<double>(raw_) / kScale; }

  // "1.234,56": so many decimals, 1 to 4, rounded half away from zero, with thousand points.
  std::string Brazil(int decimals = 2) const;
  // "1234.5600": four decimals always.
  std::string Neutral() const;
  // "0.00": two decimals with a point, rounded half away from zero.
  std::string Format2() const;

  // Rounded half away from zero to two decimals: the round trip through "0.00".
  Currency Round2() const;
  // Whole cents of `Round2`. Raises RangeError beyond 64 bits.
  int64_t Cents() const;

  Currency Abs() const { return raw_ < 0 ? -*this : *this; }
  bool IsZero() const { return raw_ == 0; }

  // Arithmetic raises RangeError on overflow.
  constexpr Currency operator-() const { return FromRaw(-raw_); }
  Currency& operator+=(Currency other);
  Currency& operator-=(Currency other);
  friend Currency operator+(Currency a, Currency b) { return a += b; }
  friend Currency operator-(Currency a, Currency b) { return a -= b; }
  // Product with a quantity, a rate or a count, rounded to four decimals.
  friend Currency operator*(Currency a, double factor) { return Times(a, factor); }
  friend Currency operator*(double factor, Currency a) { return Times(a, factor); }
  // Quotient, rounded to four decimals. Raises RangeError on zero.
  friend Currency operator/(Currency a, double divisor) { return Over(a, divisor); }

  friend constexpr auto operator<=>(Currency a, Currency b) = default;

 private:
  static Currency Checked(Int128 raw);
  static Currency Times(Currency a, double factor);
  static Currency Over(Currency a, double divisor);

  Int128 raw_ = 0;
};

}  // namespace orv
