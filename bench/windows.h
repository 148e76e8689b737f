// The desk as a process of its own, and browser windows that speak the door to it over the network.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orv::bench {

// `orvcc serve` on a database, from the program beside this one. Ended with the object.
class Serving {
 public:
  // Returns once the list of companies has been answered. Raises UserError when it never is.
  explicit Serving(const std::filesystem::path& database);
  ~Serving();
  Serving(const Serving&) = delete;
  Serving& operator=(const Serving&) = delete;

  int Port() const { return port_; }
  // From the start of the program to the answer.
  double SecondsToAnswer() const { return seconds_; }
  // Bytes of the process in memory that are no file's.
  std::size_t Memory() const;
  // The cookie of a user of the house after the login.
  std::string LogIn(const std::string& user) const;

 private:
  void Start(const std::filesystem::path& database);
  void End();

  std::filesystem::path folder_;
  pid_t process_ = -1;
  int output_ = -1;
  int port_ = 0;
  double seconds_ = 0;
};

// Windows, each with its session.
class Windows {
 public:
  explicit Windows(int port);
  ~Windows();
  Windows(const Windows&) = delete;
  Windows& operator=(const Windows&) = delete;

  // Opens one more with the cookie of a login, and waits until the session is there.
  void Open(const std::string& cookie);
  std::size_t Count() const;
  // Sends an object in one window and waits for its answer; gives how it ended, "idle" or "waiting". Raises
  // UserError for an error.
  std::string Do(std::size_t window, std::string_view object);
  // Sends the objects in turn, again and again, in each of the windows [first, last), evenly spread over the
  // time; gives the seconds from each sending to its "idle".
  std::vector<double> Press(std::size_t first, std::size_t last, const std::vector<std::string>& objects,
                            std::chrono::milliseconds every, std::chrono::milliseconds during);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace orv::bench
