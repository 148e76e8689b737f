// How an administrator at the machine reaches the desk that is running: a socket in its data folder that only
// the desk's own user can open.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "desk/json.h"

namespace orv {

class ServerControl {
 public:
  // Answers an object with an object, on a thread of its own. Raises UserError when another desk runs in that
  // folder, or the socket can't be made.
  ServerControl(const std::filesystem::path& folder, std::function<Json(const Json&)> answer);
  ~ServerControl();
  ServerControl(const ServerControl&) = delete;
  ServerControl& operator=(const ServerControl&) = delete;

 private:
  void Run();
  void Serve(int connection);

  std::function<Json(const Json&)> answer_;
  std::filesystem::path path_;
  int lock_ = -1;
  int socket_ = -1;
  int wake_ = -1;
  std::thread thread_;
};

// Asks the desk that runs in that data folder. Raises UserError when none does.
Json AskDesk(const std::filesystem::path& folder, const Json& question);

}  // namespace orv
