// What a field of a data set holds, in 16 bytes: null, text (UTF-8), integer, float, money, date, date and
// time. Texts of up to 14 bytes stand in the value itself.
#pragma once

#include <compare>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "toolkit/currency.h"
#include "toolkit/date.h"

namespace orv {

enum class ValueKind : uint8_t { Null, Text, Integer, Float, Currency, Date, DateTime };

class Value {
 public:
  Value() = default;
  Value(std::string_view text) { SetText(text); }
  Value(const std::string& text) { SetText(text); }
  Value(const char* text) { SetText(text); }
  Value(int number) : Value(int64_t{number}) {}
  Value(int64_t number) : kind_(ValueKind::Integer) { Store(number); }
  Value(double number) : kind_(ValueKind::Float) { Store(number); }
  Value(Currency amount) : kind_(ValueKind::Currency) { StoreAmount(amount.Raw()); }
  // The empty date is null.
  Value(Date date) {
    if (!date.Empty()) kind_ = ValueKind::Date, Store(date.Days());
  }
  Value(DateTime time) : kind_(ValueKind::DateTime) { Store(time.Seconds()); }

  Value(const Value& other) { CopyFrom(other); }
  Value(Value&& other) noexcept { TakeFrom(other); }
  Value& operator=(const Value& other) {
    if (this != &other) Release(), CopyFrom(other);
    return *this;
  }
  Value& operator=(Value&& other) noexcept {
    if (this != &other) Release(), TakeFrom(other);
    return *this;
  }
  ~Value() { Release(); }

  ValueKind Kind() const { return kind_; }
  bool IsNull() const { return kind_ == ValueKind::Null; }
  bool IsText() const { return kind_ == ValueKind::Text; }

  // The text itself; empty for anything but a text.
  std::string_view Text() const {
    if (kind_ != ValueKind::Text) return {};
    return length_ == kHeap ? HeapText() : std::string_view(data_, length_);
  }

  // Conversions in the Brazilian form. Null gives "", 0, 0.0, zero, the empty date.
  // A text that isn't a number or a date raises ConversionError; the blank text counts as null.
  std::string AsString() const;
  int64_t AsInteger() const;
  double AsFloat() const;
  Currency AsCurrency() const;
  Date AsDate() const;
  DateTime AsDateTime() const;

  // The neutral form: money "1234.5600", floats with a point, dates "yyyy-mm-dd", null "".
  std::string Neutral() const;

  // The value as another kind, as a field of that kind would hold it. Raises ConversionError.
  Value As(ValueKind kind) const;

  // Order of values: null first; numbers of any kind by size, texts by code point, dates by day.
  // A text against a number or a date compares by the neutral text.
  friend std::strong_ordering Compare(const Value& a, const Value& b);
  friend bool operator==(const Value& a, const Value& b) { return Compare(a, b) == 0; }

  // Equal values have equal hashes, also across the kinds of numbers.
  std::size_t Hash() const;

 private:
  static constexpr uint8_t kHeap = 255;
  static constexpr std::size_t kInline = 14;

  template <class T>
  void Store(T v) {
    static_assert(sizeof(T) <= kInline);
    std::memcpy(data_, &v, sizeof(T));
  }
  template <class T>
  T Load() const {
    T v;
    std::memcpy(&v, data_, sizeof(T));
    return v;
  }
  // The lower bytes of a number of 128 bits, which hold any amount.
  void StoreAmount(Int128 raw) { std::memcpy(data_, &raw, kInline); }
  Currency Amount() const {
    Int128 raw = 0;
    std::memcpy(&raw, data_, kInline);
    return Currency::FromRaw((raw << 16) >> 16);
  }
  void SetText(std::string_view text);
  std::string_view HeapText() const;
  void CopyFrom(const Value& other);
  void TakeFrom(Value& other) noexcept {
    std::memcpy(static_cast<void*>(this), &other, sizeof(Value));
    other.kind_ = ValueKind::Null;
    other.length_ = 0;
  }
  void Release() {
    if (length_ == kHeap) FreeHeap();
    kind_ = ValueKind::Null;
    length_ = 0;
  }
  void FreeHeap();

  alignas(8) char data_[kInline] = {};
  uint8_t length_ = 0;
  ValueKind kind_ = ValueKind::Null;
};
static_assert(sizeof(Value) == 16);

std::strong_ordering Compare(const Value& a, const Value& b);

// A number that orders like the value as far as it goes: a smaller value never has a larger one.
uint64_t SortPrefix(const Value& value);

// A float with a decimal point and no exponent, the shortest text that reads back the same.
std::string FloatText(double number);
// "1234.56" or "-3" to a float. Raises ConversionError.
double ParseFloat(std::string_view text);
// Digits with an optional sign. Raises ConversionError.
int64_t ParseInteger(std::string_view text);

}  // namespace orv
