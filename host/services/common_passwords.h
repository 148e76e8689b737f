// Words and rows of keys that people take for passwords.
#pragma once

#include <string_view>

namespace orv {

// True for a widely used password, or a word that becomes one with some digits around it. `folded` is in
// lower case without accents.
bool IsCommonPassword(std::string_view folded);

}  // namespace orv
