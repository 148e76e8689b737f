// What a login holds by: it goes on while the database keeps a password under which it was opened, or which
// it has set itself.
#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

// What the user is told when his login holds no longer.
inline constexpr std::string_view kCutOff =
    "Seu acesso foi retirado ou sua senha foi trocada. Entre de novo.";

// From any thread: a login's windows look at it, each on its own.
class LoginSeal {
 public:
  explicit LoginSeal(std::string seal) : seals_{std::move(seal)} {}

  // A password that the login itself sets: told before it is committed, so that no window sees a strange one.
  void Add(std::string seal) {
    const std::lock_guard lock(mutex_);
    seals_.push_back(std::move(seal));
  }
  bool Holds(std::string_view seal) const {
    const std::lock_guard lock(mutex_);
    return std::find(seals_.begin(), seals_.end(), seal) != seals_.end();
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> seals_;
};

}  // namespace orv
