#include "desk/logins.h"

#include <sodium.h>

#include <algorithm>
#include <array>

#include "toolkit/text.h"

namespace orv {
namespace {

// Failures that cost nothing: a person mistypes, and an office may share an address.
constexpr int kFreeOfUser = 5;
constexpr int kFreeOfAddress = 20;
constexpr std::chrono::seconds kLongestWait{60};
constexpr std::chrono::minutes kForget{15};
constexpr std::size_t kMostEntries = 10000;
constexpr std::size_t kLongestKey = 64;

std::string Digest(std::string_view token) {
  std::array<unsigned char, crypto_generichash_BYTES> digest{};
  crypto_generichash(digest.data(), digest.size(), reinterpret_cast<const unsigned char*>(token.data()),
                     token.size(), nullptr, 0);
  return {reinterpret_cast<const char*>(digest.data()), digest.size()};
}

std::string Key(std::string_view text) { return Lower(Trim(text)).substr(0, kLongestKey); }

}  // namespace

std::string RandomHex(int bits) {
  std::vector<unsigned char> bytes(static_cast<std::size_t>(bits) / 8);
  randombytes_buf(bytes.data(), bytes.size());
  std::string hex(bytes.size() * 2 + 1, '\0');
  sodium_bin2hex(hex.data(), hex.size(), bytes.data(), bytes.size());
  hex.pop_back();
  return hex;
}

Logins::Added Logins::Add(std::string_view user, std::string_view company, std::string_view address,
                          Instant now) {
  Added added{RandomHex(128), RandomHex(32), ""};
  std::vector<const Login*> own;
  for (const auto& [id, login] : by_id_) {
    if (SameText(login.user, user)) own.push_back(&login);
  }
  if (own.size() >= limits_.per_user) {
    const auto oldest = std::min_element(own.begin(), own.end(),
                                         [](const Login* a, const Login* b) { return a->used < b->used; });
    added.dropped = (*oldest)->id;
    Remove(added.dropped);
  }
  by_digest_.emplace(Digest(added.token), added.id);
  by_id_.emplace(added.id,
                 Login{added.id, std::string(user), std::string(company), std::string(address), now, now});
  return added;
}

bool Logins::Expired(const Login& login, Instant now) const {
  return now - login.used >= limits_.idle || now - login.since >= limits_.absolute;
}

const Login* Logins::Find(std::string_view token, Instant now) const {
  const auto found = by_digest_.find(Digest(token));
  if (found == by_digest_.end()) return nullptr;
  const Login& login = by_id_.at(found->second);
  return Expired(login, now) ? nullptr : &login;
}

const Login* Logins::FindId(std::string_view id) const {
  const auto found = by_id_.find(std::string(id));
  return found == by_id_.end() ? nullptr : &found->second;
}

void Logins::Touch(std::string_view id, Instant now) {
  if (const auto found = by_id_.find(std::string(id)); found != by_id_.end()) found->second.used = now;
}

bool Logins::Remove(std::string_view id) {
  const std::string key(id);
  if (by_id_.erase(key) == 0) return false;
  std::erase_if(by_digest_, [&](const auto& entry) { return entry.second == key; });
  return true;
}

std::vector<Login> Logins::TakeExpired(Instant now) {
  std::vector<Login> expired;
  for (const auto& [id, login] : by_id_) {
    if (Expired(login, now)) expired.push_back(login);
  }
  for (const Login& login : expired) Remove(login.id);
  return expired;
}

std::vector<Login> Logins::All() const {
  std::vector<Login> all;
  for (const auto& [id, login] : by_id_) all.push_back(login);
  std::sort(all.begin(), all.end(), [](const Login& a, const Login& b) { return a.since < b.since; });
  return all;
}

std::chrono::seconds LoginThrottle::Left(const Entries& entries, const std::string& key, Instant now) {
  const auto found = entries.find(key);
  if (found == entries.end() || found->second.until <= now) return std::chrono::seconds(0);
  return std::chrono::ceil<std::chrono::seconds>(found->second.until - now);
}

void LoginThrottle::Count(Entries& entries, const std::string& key, int free, Instant now) {
  if (entries.size() >= kMostEntries && !entries.contains(key)) {
    std::erase_if(entries, [&](const auto& entry) { return now - entry.second.last >= kForget; });
    // A tenth at a time, so that a flood of names doesn't cost a search each.
    if (entries.size() >= kMostEntries) {
      std::vector<Instant> times;
      times.reserve(entries.size());
      for (const auto& entry : entries) times.push_back(entry.second.last);
      const auto tenth = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 10);
      std::nth_element(times.begin(), tenth, times.end());
      std::erase_if(entries, [&](const auto& entry) { return entry.second.last <= *tenth; });
    }
  }
  Entry& entry = entries[key];
  if (now - entry.last >= kForget) entry.failures = 0;
  entry.last = now;
  ++entry.failures;
  // Twice as long after each one.
  const int beyond = entry.failures - free;
  if (beyond >= 0)
    entry.until = now + std::min(std::chrono::seconds(1 << std::min(beyond, 10)), kLongestWait);
}

std::optional<std::chrono::seconds> LoginThrottle::Begin(std::string_view user, std::string_view address,
                                                         Instant now) {
  const std::string of_user = Key(user);
  const std::string of_address = Key(address);
  const auto wait = std::max(Left(users_, of_user, now), Left(addresses_, of_address, now));
  if (wait.count() > 0) return wait;
  Count(users_, of_user, kFreeOfUser, now);
  Count(addresses_, of_address, kFreeOfAddress, now);
  return std::nullopt;
}

void LoginThrottle::Succeeded(std::string_view user, std::string_view address) {
  users_.erase(Key(user));
  // The address keeps what others failed at from there.
  const auto found = addresses_.find(Key(address));
  if (found != addresses_.end() && --found->second.failures <= 0) addresses_.erase(found);
}

std::chrono::milliseconds RateLimit::Take(Instant now) {
  const std::chrono::duration<double> passed = now - last_;
  left_ = std::min(at_once_, left_ + passed.count() * a_second_) - 1;
  last_ = now;
  if (left_ >= 0) return std::chrono::milliseconds(0);
  return std::chrono::milliseconds(static_cast<int64_t>(-left_ / a_second_ * 1000) + 1);
}

}  // namespace orv
