// Passwords: what may be one, and how one is kept.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orv {

// The work of one Argon2id hash. The default suits a login that a person waits for; tests take the least.
struct PasswordCost {
  unsigned long long operations = 2;
  std::size_t memory = 64U << 20;  // bytes
  static PasswordCost Least();
};

constexpr std::size_t kMinPassword = 12;  // characters

// Raises UserError for a password that is too short, widely known, made of the login, or no valid text.
void CheckNewPassword(std::string_view login, std::string_view password);

// The password as it is kept, 127 characters at most, with its salt and its cost. Raises UserError when there
// is no memory for it.
std::string HashPassword(std::string_view password, PasswordCost cost);

// False also for a `hash` that isn't one.
bool VerifyPassword(std::string_view hash, std::string_view password);

}  // namespace orv
