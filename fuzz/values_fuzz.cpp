// What people type as amounts, dates and numbers: read or refused, never misread.
#include <string_view>

#include "fuzz/require.h"
#include "toolkit/currency.h"
#include "toolkit/date.h"
#include "toolkit/error.h"
#include "toolkit/text.h"
#include "toolkit/value.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace orv;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    const Currency amount = Currency::ParseBrazil(text);
    Require(Currency::ParseNeutral(amount.Neutral()) == amount);
    Require(Currency::ParseBrazil(amount.Brazil()) == amount.Round2());
  } catch (const UserError&) {
  }
  try {
    const Currency typed = Currency::ParseTyped(text);
    Require(typed.FitsField() && typed == Currency::ParseBrazil(text) && typed == typed.Round2());
  } catch (const UserError&) {
  }
  try {
    const Date day = Date::ParseBrazil(text);
    Require(Date::ParseBrazil(day.Brazil()) == day);
  } catch (const UserError&) {
  }
  try {
    const double number = ParseFloat(text);
    Require(ParseFloat(FloatText(number)) == number);
  } catch (const UserError&) {
  }
  const Value value(text);
  Require(value.Text() == text);
  Require(ValidUtf8(CleanUtf8(text)));
  Require(CharCount(CutChars(text, 5)) <= 5);
  Require(SameText(Upper(text), Lower(text)));
  Require(NameHash()(Upper(text)) == NameHash()(Lower(text)));
  Fold(text);
  return 0;
}
