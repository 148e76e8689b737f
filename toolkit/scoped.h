// What is so for a block, and is put back at its end however the block ends. An action may be unwound by a
// cancelled statement or by the session's end: nothing that runs a statement or throws belongs here.
#pragma once

#include <type_traits>
#include <utility>

namespace orv {

// Another value for a variable.
template <class T>
class ScopedValue {
 public:
  ScopedValue(T& variable, std::type_identity_t<T> value)
      : variable_(variable), before_(std::exchange(variable, std::move(value))) {}
  ~ScopedValue() { variable_ = std::move(before_); }
  ScopedValue(const ScopedValue&) = delete;
  ScopedValue& operator=(const ScopedValue&) = delete;

 private:
  static_assert(std::is_nothrow_move_assignable_v<T>);
  T& variable_;
  T before_;
};

// Something done at the end.
template <class Action>
class AtEnd {
 public:
  explicit AtEnd(Action action) : action_(std::move(action)) {}
  ~AtEnd() { action_(); }
  AtEnd(const AtEnd&) = delete;
  AtEnd& operator=(const AtEnd&) = delete;

 private:
  Action action_;
};

}  // namespace orv
