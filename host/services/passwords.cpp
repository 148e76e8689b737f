#include "host/services/passwords.h"

#include <sodium.h>

#include <algorithm>
#include <cstring>

#include "host/services/common_passwords.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// A longer one only costs time.
constexpr std::size_t kMaxPassword = 256;

void StartSodium() {
  static const bool started = sodium_init() >= 0;
  ORV_ASSERT(started);
}

bool Letter(char c) { return (c >= 'a' && c <= 'z') || (static_cast<unsigned char>(c) & 0x80) != 0; }

// Without the digits and signs around it: "senha2024!!" is "senha".
std::string_view Core(std::string_view text) {
  while (!text.empty() && !Letter(text.front())) text.remove_prefix(1);
  while (!text.empty() && !Letter(text.back())) text.remove_suffix(1);
  return text;
}

// True for a text that repeats its first few characters: "aaaaaaaaaaaa", "123412341234".
bool Repeats(std::string_view text) {
  for (std::size_t period = 1; period <= text.size() / 2; ++period) {
    if (text.substr(period) == text.substr(0, text.size() - period)) return true;
  }
  return false;
}

// True for a text that counts up or down throughout: "abcdefghijkl", "987654321098".
bool Counts(std::string_view text) {
  for (const int step : {1, -1}) {
    bool counts = true;
    for (std::size_t i = 1; i < text.size() && counts; ++i) {
      const int distance = text[i] - text[i - 1];
      const bool wraps = (text[i - 1] == '9' && text[i] == '0' && step == 1) ||
                         (text[i - 1] == '0' && text[i] == '9' && step == -1);
      counts = distance == step || wraps;
    }
    if (counts) return true;
  }
  return false;
}

}  // namespace

PasswordCost PasswordCost::Least() { return {crypto_pwhash_OPSLIMIT_MIN, crypto_pwhash_MEMLIMIT_MIN}; }

void CheckNewPassword(std::string_view login, std::string_view password) {
  if (!ValidUtf8(password) || CharCount(password) > kMaxPassword)
    throw UserError("A senha não pode ser usada.");
  if (CharCount(password) < kMinPassword) {
    throw UserError("A senha deve ter pelo menos " + std::to_string(kMinPassword) + " caracteres.");
  }
  const std::string folded = Fold(password);
  if (Repeats(folded) || Counts(folded) || IsCommonPassword(folded) || IsCommonPassword(Core(folded))) {
    throw UserError("A senha é muito comum. Escolha outra.");
  }
  const std::string name = Fold(Trim(login));
  if (name.size() >= 3 && folded.find(name) != std::string::npos) {
    throw UserError("A senha não pode conter o nome do usuário.");
  }
}

std::string HashPassword(std::string_view password, PasswordCost cost) {
  StartSodium();
  char hash[crypto_pwhash_STRBYTES] = {};
  if (crypto_pwhash_str_alg(hash, password.data(), password.size(), cost.operations, cost.memory,
                            crypto_pwhash_ALG_ARGON2ID13) != 0) {
    throw UserError("Não há memória para guardar a senha.");
  }
  return hash;
}

bool VerifyPassword(std::string_view hash, std::string_view password) {
  StartSodium();
  char kept[crypto_pwhash_STRBYTES] = {};
  if (hash.empty() || hash.size() >= sizeof kept) return false;
  std::memcpy(kept, hash.data(), hash.size());
  return crypto_pwhash_str_verify(kept, password.data(), password.size()) == 0;
}

}  // namespace orv
