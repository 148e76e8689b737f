// The checks of passwords: who may have one made now, in which turn, and at which devices users are known. On
// the network's thread.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "desk/server/logins.h"
#include "desk/server/server_workers.h"

namespace orv {

// One that may be made: whose it is, and from where.
struct PasswordCheck {
  std::string user, address;
  std::string device;  // "" for one that isn't known as the user's
};

class PasswordChecks {
 public:
  // The key that makes devices known is kept in the file.
  PasswordChecks(const std::filesystem::path& key_file, Workers::Post post);

  // The check, or how long to wait before it may be made. `note` is what the browser keeps of an earlier
  // login, `seal` the user's, "" for an unknown user.
  std::variant<PasswordCheck, std::chrono::seconds> Begin(std::string_view user, const std::string& address,
                                                          std::string_view note, std::string_view seal,
                                                          Date today, Instant now);

  // As Workers::Do; who comes from a known device goes first.
  template <class Work, class Done>
  bool Do(const PasswordCheck& check, Work work, Done done) {
    const bool taken = workers_.Do(
        std::move(work),
        [this, place = PlaceOf(check), done = std::move(done)](auto result) {
          if (--waiting_[place] == 0) waiting_.erase(place);
          done(std::move(result));
        },
        !check.device.empty());
    if (taken) ++waiting_[PlaceOf(check)];
    return taken;
  }

  // The password was right.
  void Succeeded(const PasswordCheck& check);
  const KnownDevices& Devices() const { return devices_; }

 private:
  // Whose share of the queue it takes.
  static std::string PlaceOf(const PasswordCheck& check);

  LoginThrottle throttle_;
  KnownDevices devices_;
  // Those that wait or are under way.
  std::map<std::string, int> waiting_;
  Workers workers_;
};

}  // namespace orv
