// The door in process: an object in, and all objects out up to the "idle" or "waiting" that ends them.
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "desk/session/session.h"

namespace orv {

class DoorClient {
 public:
  // Waits until the session is ready. Raises UserError with the session's own text when it couldn't start.
  DoorClient(SessionOptions options, Log& log);

  // Sends an object and gives what comes back; the last object is "idle" or "waiting". What comes meanwhile
  // is shown to `heard`, whose answer is sent at once.
  using Heard = std::function<std::optional<Json>(const Json& out)>;
  std::vector<Json> Do(Json in, Heard heard = nullptr);
  // What came with the start of the session or the latest `Do`.
  bool Ended() const { return ended_; }

 private:
  void Receive(const Json& out);
  std::vector<Json> Await();

  std::mutex mutex_;
  std::condition_variable arrived_;
  std::vector<Json> out_;
  Heard heard_;
  // Objects sent, the session's start among them, and how many were answered to their end.
  int sent_ = 1, settled_ = 0;
  bool ended_ = false;
  std::unique_ptr<Session> session_;
};

}  // namespace orv
