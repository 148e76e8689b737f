// The error types that the layers above catch by kind.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace orv {

// A failure that the user may read as it stands: its text is a sentence in Portuguese.
class UserError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A text that isn't what was asked for; `Text()` is the offending text.
class ConversionError : public UserError {
 public:
  ConversionError(std::string text, std::string_view wanted)
      : UserError("\"" + text + "\" não é " + std::string(wanted) + "."), text_(std::move(text)) {}
  const std::string& Text() const { return text_; }

 private:
  std::string text_;
};

// An amount or a number that leaves the range of its type.
class RangeError : public UserError {
 public:
  using UserError::UserError;
};

// Ends an action silently: unwinds to the session, which rolls back and shows nothing.
class SilentAbort {};

// Ends an action silently.
[[noreturn]] inline void Abort() { throw SilentAbort{}; }

// A broken promise between our own parts.
[[noreturn]] void AssertionFailed(const char* expression, const char* file, int line);

}  // namespace orv

// On in every build.
#define ORV_ASSERT(expression) \
  ((expression) ? static_cast<void>(0) : ::orv::AssertionFailed(#expression, __FILE__, __LINE__))
