#include "toolkit/value.h"

#include <atomic>
#include <bit>
#include <charconv>
#include <cmath>
#include <new>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// What stands before the bytes of a long text. Copies of a value hold the same one, also in other threads; it
// never changes.
struct SharedText {
  std::atomic<uint32_t> holders;
  uint32_t size;
};

bool IsNumber(ValueKind kind) {
  return kind == ValueKind::Integer || kind == ValueKind::Float || kind == ValueKind::Currency;
}

bool IsDay(ValueKind kind) { return kind == ValueKind::Date || kind == ValueKind::DateTime; }

// A float below it counts as money where it meets some.
constexpr double kMostExact = 9e14;

int64_t Whole(Int128 number) {
  if (number != static_cast<int64_t>(number)) throw RangeError("O número é grande demais.");
  return static_cast<int64_t>(number);
}

std::strong_ordering CompareReal(long double a, long double b) {
  return a < b   ? std::strong_ordering::less
         : a > b ? std::strong_ordering::greater
                 : std::strong_ordering::equal;
}

// A number typed in either form: "1.234,56" when there is a comma, else "1234.56".
double LooseFloat(std::string_view text) {
  text = Trim(text);
  if (text.find(',') == std::string_view::npos) return ParseFloat(text);
  return ParseFloat(ReplaceAll(ReplaceAll(text, ".", ""), ",", "."));
}

Currency LooseCurrency(std::string_view text) {
  text = Trim(text);
  if (text.find(',') != std::string_view::npos) return Currency::ParseBrazil(text);
  const std::size_t point = text.find('.');
  const bool decimal = point != std::string_view::npos && text.find('.', point + 1) == std::string_view::npos;
  // One point alone is read as the decimal one unless three digits make it a thousand point.
  return decimal && text.size() - point - 1 != 3 ? Currency::ParseNeutral(text) : Currency::ParseBrazil(text);
}

}  // namespace

void Value::SetText(std::string_view text) {
  kind_ = ValueKind::Text;
  if (text.size() <= kInline) {
    length_ = static_cast<uint8_t>(text.size());
    // A view of nothing may have no address.
    if (!text.empty()) std::memcpy(data_, text.data(), text.size());
    return;
  }
  void* block = ::operator new(sizeof(SharedText) + text.size());
  auto* shared = new (block) SharedText{{1}, static_cast<uint32_t>(text.size())};
  std::memcpy(static_cast<void*>(shared + 1), text.data(), text.size());
  Store(shared);
  length_ = kHeap;
}

std::string_view Value::HeapText() const {
  const auto* shared = Load<const SharedText*>();
  return {reinterpret_cast<const char*>(shared + 1), shared->size};
}

void Value::FreeHeap() {
  auto* shared = Load<SharedText*>();
  if (shared->holders.fetch_sub(1, std::memory_order_acq_rel) == 1) ::operator delete(shared);
}

void Value::CopyFrom(const Value& other) {
  std::memcpy(static_cast<void*>(this), &other, sizeof(Value));
  if (length_ == kHeap) Load<SharedText*>()->holders.fetch_add(1, std::memory_order_relaxed);
}

std::string Value::AsString() const {
  switch (kind_) {
    case ValueKind::Null:
      return "";
    case ValueKind::Text:
      return std::string(Text());
    case ValueKind::Integer:
      return std::to_string(Load<int64_t>());
    case ValueKind::Float:
      return ReplaceAll(FloatText(Load<double>()), ".", ",");
    case ValueKind::Currency:
      return Amount().Brazil();
    case ValueKind::Date:
      return Date::FromDays(Load<int32_t>()).Brazil();
    case ValueKind::DateTime:
      return DateTime::FromSeconds(Load<int64_t>()).Brazil();
  }
  return "";
}

int64_t Value::AsInteger() const {
  switch (kind_) {
    case ValueKind::Integer:
      return Load<int64_t>();
    case ValueKind::Float:
      return Whole(RoundedProduct(1, Load<double>()));
    case ValueKind::Currency:
      return Whole(RoundedQuotient(Amount().Raw(), Currency::kScale));
    case ValueKind::Text:
      return Trim(Text()).empty() ? 0 : ParseInteger(Trim(Text()));
    case ValueKind::Null:
      return 0;
    case ValueKind::Date:
    case ValueKind::DateTime:
      break;
  }
  throw ConversionError(AsString(), "um número inteiro");
}

double Value::AsFloat() const {
  switch (kind_) {
    case ValueKind::Integer:
      return static_cast<double>(Load<int64_t>());
    case ValueKind::Float:
      return Load<double>();
    case ValueKind::Currency:
      return AsCurrency().ToDouble();
    case ValueKind::Text:
      return Trim(Text()).empty() ? 0 : LooseFloat(Text());
    case ValueKind::Null:
      return 0;
    case ValueKind::Date:
    case ValueKind::DateTime:
      break;
  }
  throw ConversionError(AsString(), "um número");
}

Currency Value::AsCurrency() const {
  switch (kind_) {
    case ValueKind::Integer:
      return Currency::FromRaw(Int128{Load<int64_t>()} * Currency::kScale);
    case ValueKind::Float:
      return Currency::FromDouble(Load<double>());
    case ValueKind::Currency:
      return Amount();
    case ValueKind::Text:
      return Trim(Text()).empty() ? Currency() : LooseCurrency(Text());
    case ValueKind::Null:
      return {};
    case ValueKind::Date:
    case ValueKind::DateTime:
      break;
  }
  throw ConversionError(AsString(), "um valor");
}

Date Value::AsDate() const {
  switch (kind_) {
    case ValueKind::Date:
      return Date::FromDays(Load<int32_t>());
    case ValueKind::DateTime:
      return DateTime::FromSeconds(Load<int64_t>()).Day();
    case ValueKind::Text:
      return Date::ParseBrazil(Text());
    case ValueKind::Null:
      return {};
    default:
      throw ConversionError(AsString(), "uma data");
  }
}

DateTime Value::AsDateTime() const {
  if (kind_ == ValueKind::DateTime) return DateTime::FromSeconds(Load<int64_t>());
  const Date day = AsDate();
  return day.Empty() ? DateTime() : DateTime(day, 0, 0, 0);
}

std::string Value::Neutral() const {
  switch (kind_) {
    case ValueKind::Float:
      return FloatText(Load<double>());
    case ValueKind::Currency:
      return AsCurrency().Neutral();
    case ValueKind::Date:
      return AsDate().Neutral();
    case ValueKind::DateTime:
      return AsDateTime().Neutral();
    default:
      return AsString();
  }
}

Value Value::As(ValueKind kind) const {
  if (kind == kind_ || kind_ == ValueKind::Null || kind == ValueKind::Null)
    return kind == ValueKind::Null ? Value() : *this;
  if (kind == ValueKind::Text) return Value(AsString());
  if (IsText() && Trim(Text()).empty()) return Value();
  switch (kind) {
    case ValueKind::Integer:
      return Value(AsInteger());
    case ValueKind::Float:
      return Value(AsFloat());
    case ValueKind::Currency:
      return Value(AsCurrency());
    case ValueKind::Date:
      return Value(AsDate());
    default:
      return Value(AsDateTime());
  }
}

std::strong_ordering Compare(const Value& a, const Value& b) {
  if (a.IsNull() || b.IsNull()) return static_cast<int>(!a.IsNull()) <=> static_cast<int>(!b.IsNull());
  if (a.IsText() && b.IsText()) return a.Text() <=> b.Text();
  if (IsNumber(a.kind_) && IsNumber(b.kind_)) {
    if (a.kind_ == ValueKind::Integer && b.kind_ == ValueKind::Integer)
      return a.Load<int64_t>() <=> b.Load<int64_t>();
    if (a.kind_ == ValueKind::Currency && b.kind_ == ValueKind::Currency) return a.Amount() <=> b.Amount();
    // Money against a float is compared as money where it fits: 0.1 + 0.2 equals 0.30.
    if (a.kind_ == ValueKind::Currency || b.kind_ == ValueKind::Currency) {
      const double x = a.AsFloat(), y = b.AsFloat();
      if (std::fabs(x) < kMostExact && std::fabs(y) < kMostExact) return a.AsCurrency() <=> b.AsCurrency();
    }
    return CompareReal(a.AsFloat(), b.AsFloat());
  }
  if (IsDay(a.kind_) && IsDay(b.kind_)) {
    if (a.kind_ == b.kind_ && a.kind_ == ValueKind::Date) return a.Load<int32_t>() <=> b.Load<int32_t>();
    return a.AsDateTime() <=> b.AsDateTime();
  }
  return a.Neutral() <=> b.Neutral();
}

std::size_t Value::Hash() const {
  switch (kind_) {
    case ValueKind::Null:
      return 0;
    case ValueKind::Text:
      return std::hash<std::string_view>()(Text());
    case ValueKind::Integer:
    case ValueKind::Float:
    case ValueKind::Currency: {
      const double number = AsFloat();
      if (std::fabs(number) < kMostExact)
        return std::hash<int64_t>()(static_cast<int64_t>(AsCurrency().Raw()));
      return std::hash<double>()(number);
    }
    case ValueKind::Date:
      return std::hash<int64_t>()(int64_t{Load<int32_t>()} * 86400);
    case ValueKind::DateTime:
      return std::hash<int64_t>()(Load<int64_t>());
  }
  return 0;
}

std::string FloatText(double number) {
  if (!std::isfinite(number)) throw RangeError("O número não é finito.");
  if (number == 0) return "0";
  char buffer[400];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::fixed).ptr;
  return std::string(buffer, end);
}

uint64_t SortPrefix(const Value& value) {
  switch (value.Kind()) {
    case ValueKind::Null:
      return 0;
    case ValueKind::Text: {
      uint64_t prefix = 0;
      const std::string_view text = value.Text();
      for (std::size_t i = 0; i < 8; ++i)
        prefix = prefix << 8 | (i < text.size() ? static_cast<uint8_t>(text[i]) : 0);
      return prefix >> 1 | uint64_t{1} << 63;
    }
    case ValueKind::Date:
    case ValueKind::DateTime:
      return (static_cast<uint64_t>(value.AsDateTime().Seconds()) ^ uint64_t{1} << 63) >> 1 | uint64_t{1}
                                                                                                  << 63;
    default: {
      // The bits of a float order like the numbers once the negative ones are turned round. Adding zero makes
      // one zero of the two.
      const auto bits = std::bit_cast<uint64_t>(value.AsFloat() + 0.0);
      const uint64_t ordered = bits >> 63 != 0 ? ~bits : bits | uint64_t{1} << 63;
      return ordered >> 1 | uint64_t{1} << 63;
    }
  }
}

double ParseFloat(std::string_view text) {
  double number = 0;
  const std::string_view trimmed = Trim(text);
  const bool plus = !trimmed.empty() && trimmed.front() == '+';
  const char* from = trimmed.data() + (plus ? 1 : 0);
  const char* to = trimmed.data() + trimmed.size();
  const auto result = std::from_chars(from, to, number, std::chars_format::fixed);
  if (result.ec != std::errc() || result.ptr != to || !std::isfinite(number)) {
    throw ConversionError(std::string(text), "um número válido");
  }
  return number;
}

int64_t ParseInteger(std::string_view text) {
  int64_t number = 0;
  const bool plus = !text.empty() && text.front() == '+';
  const char* to = text.data() + text.size();
  const auto result = std::from_chars(text.data() + (plus ? 1 : 0), to, number);
  if (text.empty() || result.ec != std::errc() || result.ptr != to) {
    throw ConversionError(std::string(text), "um número inteiro válido");
  }
  return number;
}

}  // namespace orv
