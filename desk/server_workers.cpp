#include "desk/server_workers.h"

namespace orv {

Workers::Workers(int threads, std::size_t most) : most_(most) {
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

bool Workers::Do(std::function<void()> work) {
  {
    const std::lock_guard lock(mutex_);
    if (ending_ || queue_.size() >= most_) return false;
    queue_.push_back(std::move(work));
  }
  arrived_.notify_one();
  return true;
}

void Workers::Run() {
  for (;;) {
    std::function<void()> work;
    {
      std::unique_lock lock(mutex_);
      arrived_.wait(lock, [&] { return ending_ || !queue_.empty(); });
      if (ending_) return;
      work = std::move(queue_.front());
      queue_.pop_front();
    }
    try {
      work();
    } catch (const std::exception&) {
    }
  }
}

}  // namespace orv
