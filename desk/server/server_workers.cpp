#include "desk/server/server_workers.h"

namespace orv {

Workers::Workers(int threads, std::size_t most, Post post) : most_(most), post_(std::move(post)) {
  for (int i = 0; i < threads; ++i) threads_.emplace_back([this] { Run(); });
}

Workers::~Workers() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  arrived_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

bool Workers::Queue(std::function<void()> job, bool first) {
  {
    const std::lock_guard lock(mutex_);
    auto& queue = first ? first_ : queue_;
    if (ending_ || queue.size() >= most_) return false;
    queue.push_back(std::move(job));
  }
  arrived_.notify_one();
  return true;
}

void Workers::Run() {
  for (;;) {
    std::function<void()> job;
    {
      std::unique_lock lock(mutex_);
      arrived_.wait(lock, [&] { return ending_ || !first_.empty() || !queue_.empty(); });
      if (ending_) return;
      auto& queue = first_.empty() ? queue_ : first_;
      job = std::move(queue.front());
      queue.pop_front();
    }
    job();
  }
}

}  // namespace orv
