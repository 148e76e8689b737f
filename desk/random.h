// Names that nobody guesses.
#pragma once

#include <string>

namespace orv {

// `bits` random bits, a multiple of 8, as hexadecimal digits.
std::string RandomHex(int bits);

}  // namespace orv
