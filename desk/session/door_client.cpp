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
  if (out["on"] == Json("idle") || out["on"] == Json("waiting")) ++settled_;
  if (heard_ != nullptr) {
    if (std::optional<Json> answer = heard_(out)) {
      ++sent_;
      session_->Post(std::move(*answer));
    }
  }
  arrived_.notify_one();
}

std::vector<Json> DoorClient::Await() {
  std::unique_lock lock(mutex_);
  arrived_.wait(lock, [&] { return ended_ || settled_ >= sent_; });
  sent_ = settled_ = 0;
  heard_ = nullptr;
  return std::exchange(out_, {});
}

std::vector<Json> DoorClient::Do(Json in, Heard heard) {
  {
    const std::lock_guard lock(mutex_);
    ++sent_;
    heard_ = std::move(heard);
  }
  session_->Post(std::move(in));
  return Await();
}

}  // namespace orv
