// Texts that come again and again while a set is filled, such as the names of banks and classes.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "toolkit/value.h"

namespace orv {

// Remembers a limited number of the latest texts.
class SharedTexts {
 public:
  // Where a value's text is remembered, the value holds that one instead of its own.
  void Share(Value& value) {
    const std::string_view text = value.Text();
    if (text.empty()) return;
    Value& known = texts_[std::hash<std::string_view>{}(text) % kRemembered];
    if (known.Text() == text) {
      value = known;
    } else {
      known = value;
    }
  }

 private:
  static constexpr std::size_t kRemembered = 1024;
  std::vector<Value> texts_ = std::vector<Value>(kRemembered);
};

}  // namespace orv
