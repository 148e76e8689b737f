// Amounts of money in words.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "toolkit/currency.h"

namespace orv {

// How a thousand is written: a cheque says "um mil reais", so that nothing can be put before it.
enum class ThousandForm : uint8_t { Cheque, Plain };

// The amount in lower-case words, "um mil e duzentos reais e dez centavos". From 1 cent to 99,999,999,999,999
// cents; raises UserError outside that.
std::string AmountInWords(int64_t cents, ThousandForm form = ThousandForm::Cheque);

// An amount as a text: "1.234,56", "1234,56", and "1234.56" where the point can only be a decimal one. Raises
// ConversionError.
Currency ParseAmountText(std::string_view text);

}  // namespace orv
