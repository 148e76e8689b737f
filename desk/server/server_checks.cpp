#include "desk/server/server_checks.h"

#include "desk/http/http_guard.h"

namespace orv {
namespace {

// A hash takes 64 MB and half a second of a processor.
constexpr int kThreads = 2;
constexpr std::size_t kMost = 512;
// Of these, what one address may have waiting, and one device that is known.
constexpr int kMostOfAddress = 16;
constexpr int kMostOfDevice = 2;

}  // namespace

PasswordChecks::PasswordChecks(const std::filesystem::path& key_file, Workers::Post post)
    : devices_(key_file), workers_(kThreads, kMost, std::move(post)) {}

std::string PasswordChecks::PlaceOf(const PasswordCheck& check) {
  return check.device.empty() ? NetworkOf(check.address) : check.device;
}

std::variant<PasswordCheck, std::chrono::seconds> PasswordChecks::Begin(std::string_view user,
                                                                        const std::string& address,
                                                                        std::string_view note,
                                                                        std::string_view seal, Date today,
                                                                        Instant now) {
  PasswordCheck check{std::string(user), address, devices_.Device(note, user, seal, today)};
  const auto waiting = waiting_.find(PlaceOf(check));
  const int most = check.device.empty() ? kMostOfAddress : kMostOfDevice;
  if (waiting != waiting_.end() && waiting->second >= most) return std::chrono::seconds(1);
  if (const auto wait = throttle_.Begin(user, NetworkOf(address), check.device, now)) return *wait;
  return check;
}

void PasswordChecks::Succeeded(const PasswordCheck& check) {
  throttle_.Succeeded(check.user, NetworkOf(check.address), check.device);
}

}  // namespace orv
