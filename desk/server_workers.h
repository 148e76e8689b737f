// A few threads for what would hold up the network's thread.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace orv {

class Workers {
 public:
  // `most` is how much may wait.
  Workers(int threads, std::size_t most);
  // Finishes what was begun; what waits is dropped.
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  // False when too much waits already. What the work raises is lost: it must see to that itself.
  bool Do(std::function<void()> work);

 private:
  void Run();

  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<std::function<void()>> queue_;
  std::size_t most_;
  bool ending_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace orv
