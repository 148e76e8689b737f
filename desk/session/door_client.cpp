#include "desk/session/door_client.h"

namespace orv {

DoorClient::DoorClient(SessionOptions options, Log& log) {
  session_ = std::make_unique<Session>(std::move(options), log, [this](const Json& out) { Receive(out); });
  const std::vector<Json> first = Await();
  if (!ended_) return;
  for (const Json& out : first) {
    if (out["on"] == Json("error")) throw UserError(out["text"].String());
  }
  throw UserError("A sessão não pôde ser iniciada.");
}

void DoorClient::Receive(const Json& out) {
  const std::lock_guard lock(mutex_);
  out_.push_back(out);
  if (out["on"] == Json("ended")) ended_ = true;
  if (ended_ || out["on"] == Json("idle") || out["on"] == Json("waiting")) complete_ = true;
  arrived_.notify_one();
}

std::vector<Json> DoorClient::Await() {
  std::unique_lock lock(mutex_);
  arrived_.wait(lock, [&] { return complete_; });
  complete_ = ended_;
  return std::exchange(out_, {});
}

std::vector<Json> DoorClient::Do(Json in) {
  session_->Post(std::move(in));
  return Await();
}

}  // namespace orv
