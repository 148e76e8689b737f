#include "desk/server/logins.h"

#include <sodium.h>

#include <algorithm>
#include <array>
#include <fstream>

#include "desk/random.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

// Failures that cost nothing: a person mistypes, and an office may share an address.
constexpr int kFreeOfPair = 5;
constexpr int kFreeOfAddress = 20;
constexpr std::chrono::seconds kLongestWait{60};
constexpr std::chrono::minutes kForget{15};
constexpr std::size_t kMostEntries = 10000;
constexpr std::size_t kLongestKey = 100;

std::string Digest(std::string_view token) {
  std::array<unsigned char, crypto_generichash_BYTES> digest{};
  crypto_generichash(digest.data(), digest.size(), reinterpret_cast<const unsigned char*>(token.data()),
                     token.size(), nullptr, 0);
  return {reinterpret_cast<const char*>(digest.data()), digest.size()};
}

std::string Key(std::string_view text) { return Lower(Trim(text)).substr(0, kLongestKey); }

std::string PairKey(std::string_view user, std::string_view address, std::string_view device) {
  return device.empty() ? Key(std::string(address) + " " + Lower(Trim(user))) : std::string(device);
}

std::string Hex(const unsigned char* bytes, std::size_t size) {
  std::string hex(size * 2 + 1, '\0');
  sodium_bin2hex(hex.data(), hex.size(), bytes, size);
  hex.pop_back();
  return hex;
}

}  // namespace

Logins::Added Logins::Add(std::string_view user, std::string_view company, std::string_view address,
                          Instant now, std::string_view seal) {
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
  by_id_.emplace(added.id, Login{added.id, std::string(user), std::string(company), std::string(address), now,
                                 now, std::make_shared<LoginSeal>(std::string(seal))});
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
                                                         std::string_view device, Instant now) {
  const std::string of_pair = PairKey(user, address, device);
  const std::string of_address = Key(address);
  auto wait = Left(pairs_, of_pair, now);
  if (device.empty()) wait = std::max(wait, Left(addresses_, of_address, now));
  if (wait.count() > 0) return wait;
  Count(pairs_, of_pair, kFreeOfPair, now);
  if (device.empty()) Count(addresses_, of_address, kFreeOfAddress, now);
  return std::nullopt;
}

void LoginThrottle::Succeeded(std::string_view user, std::string_view address, std::string_view device) {
  pairs_.erase(PairKey(user, address, device));
  if (!device.empty()) return;
  // The address keeps what others failed at from there.
  const auto found = addresses_.find(Key(address));
  if (found != addresses_.end() && --found->second.failures <= 0) addresses_.erase(found);
}

// A note is "2027-02-18.<the device's name>.<signature>".
KnownDevices::KnownDevices(const std::filesystem::path& key_file) {
  {
    std::ifstream in(key_file, std::ios::binary);
    key_.assign(std::istreambuf_iterator<char>(in), {});
  }
  if (key_.size() == crypto_auth_KEYBYTES) return;
  key_.resize(crypto_auth_KEYBYTES);
  randombytes_buf(key_.data(), key_.size());
  // Nobody else's from its first byte on.
  std::error_code error;
  std::filesystem::remove(key_file, error);
  { std::ofstream made(key_file); }
  std::filesystem::permissions(
      key_file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, error);
  std::ofstream out(key_file, std::ios::binary);
  out << key_;
  out.close();
  if (!out || error) throw UserError("O arquivo " + key_file.string() + " não pode ser gravado.");
}

std::string KnownDevices::Signed(std::string_view text, std::string_view user, std::string_view seal) const {
  // The parts can't be mistaken for one another: none of the first two holds a line's end, the last has one
  // length.
  const std::string whole = std::string(text) + "\n" + Key(user) + "\n" + std::string(seal);
  std::array<unsigned char, crypto_auth_BYTES> code{};
  crypto_auth(code.data(), reinterpret_cast<const unsigned char*>(whole.data()), whole.size(),
              reinterpret_cast<const unsigned char*>(key_.data()));
  return std::string(text) + "." + Hex(code.data(), code.size());
}

std::string KnownDevices::Note(std::string_view user, std::string_view seal, Date today) const {
  return Signed(today.AddDays(kDays).Neutral() + "." + RandomHex(128), user, seal);
}

std::string KnownDevices::Device(std::string_view note, std::string_view user, std::string_view seal,
                                 Date today) const {
  const std::size_t dot = note.rfind('.');
  if (dot == std::string_view::npos || seal.empty()) return "";
  const std::string right = Signed(note.substr(0, dot), user, seal);
  if (right.size() != note.size() || sodium_memcmp(right.data(), note.data(), note.size()) != 0) return "";
  // What we have signed is well formed; its days compare as texts.
  if (note.substr(0, 10) < today.Neutral()) return "";
  return std::string(note.substr(11, dot - 11));
}

std::chrono::milliseconds RateLimit::Take(Instant now) {
  const std::chrono::duration<double> passed = now - last_;
  left_ = std::min(at_once_, left_ + passed.count() * a_second_) - 1;
  last_ = now;
  if (left_ >= 0) return std::chrono::milliseconds(0);
  return std::chrono::milliseconds(static_cast<int64_t>(-left_ / a_second_ * 1000) + 1);
}

}  // namespace orv
