// Who is logged in at the desk, by what the browser keeps: a random token. And how often one may try.
// Times come in from outside. One thread at a time.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "desk/login_seal.h"
#include "toolkit/date.h"

namespace orv {

using Instant = std::chrono::steady_clock::time_point;

struct Login {
  std::string id;  // names the login to an administrator; opens nothing
  std::string user;
  std::string company;  // "_001"
  std::string address;
  Instant since;
  Instant used;
  std::shared_ptr<LoginSeal> seal;
};

class Logins {
 public:
  struct Limits {
    std::chrono::seconds idle = std::chrono::minutes(30);
    std::chrono::seconds absolute = std::chrono::hours(12);
    std::size_t per_user = 8;
  };
  struct Added {
    std::string token;  // of 128 random bits
    std::string id;
    // The user's login that was used least lately, which gave way; "" for none.
    std::string dropped;
  };

  explicit Logins(Limits limits) : limits_(limits) {}

  Added Add(std::string_view user, std::string_view company, std::string_view address, Instant now,
            std::string_view seal = "");
  // Null for a token that nobody has, or no longer.
  const Login* Find(std::string_view token, Instant now) const;
  const Login* FindId(std::string_view id) const;
  // The user has done something.
  void Touch(std::string_view id, Instant now);
  // False when there is no such login.
  bool Remove(std::string_view id);
  // Removes the logins whose time is over and gives them.
  std::vector<Login> TakeExpired(Instant now);
  // In the order in which they began.
  std::vector<Login> All() const;

 private:
  bool Expired(const Login& login, Instant now) const;

  Limits limits_;
  // Only a digest of a token is kept.
  std::unordered_map<std::string, std::string> by_digest_;
  std::unordered_map<std::string, Login> by_id_;
};

// Slows down the guessing of passwords: what comes from one address, and more so for one user from it. What
// strangers do elsewhere never keeps a user out.
class LoginThrottle {
 public:
  // How long to wait, or nothing when the attempt may be made. It counts as failed until `Succeeded`, so that
  // attempts made at the same time count, too. At a `device` known as the user's own only what was tried
  // there counts.
  std::optional<std::chrono::seconds> Begin(std::string_view user, std::string_view address,
                                            std::string_view device, Instant now);
  void Succeeded(std::string_view user, std::string_view address, std::string_view device);
  // Entries kept; bounded, whatever comes.
  std::size_t Size() const { return pairs_.size() + addresses_.size(); }

 private:
  struct Entry {
    int failures = 0;
    Instant last;
    Instant until;
  };
  using Entries = std::unordered_map<std::string, Entry>;

  static std::chrono::seconds Left(const Entries& entries, const std::string& key, Instant now);
  static void Count(Entries& entries, const std::string& key, int free, Instant now);

  Entries pairs_;  // of an address and a user, or a device
  Entries addresses_;
};

// Knows the devices at which a user has logged in before, by a note that the browser keeps and only a desk
// with this key can have written. It opens nothing.
class KnownDevices {
 public:
  static constexpr int kDays = 90;

  // Keeps the key in that file, which is made when it isn't there. Raises UserError when it can't be used.
  explicit KnownDevices(const std::filesystem::path& key_file);

  // A note for a new device, good for kDays while the user's password stays as the seal tells.
  std::string Note(std::string_view user, std::string_view seal, Date today) const;
  // The device's name, the same for the same note; "" for a note that doesn't hold.
  std::string Device(std::string_view note, std::string_view user, std::string_view seal, Date today) const;

 private:
  std::string Signed(std::string_view text, std::string_view user, std::string_view seal) const;

  std::string key_;
};

// Lets through so many a second, and a number at once after a pause.
class RateLimit {
 public:
  RateLimit(double a_second, double at_once) : a_second_(a_second), at_once_(at_once), left_(at_once) {}
  // Takes one. How long to wait before the next, zero for no wait.
  std::chrono::milliseconds Take(Instant now);

 private:
  double a_second_, at_once_, left_;
  Instant last_{};
};

}  // namespace orv
