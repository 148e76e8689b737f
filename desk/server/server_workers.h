// A few threads for what would hold up the network's thread.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace orv {

class Workers {
 public:
  // Runs work on the network's thread.
  using Post = std::function<void(std::function<void()>)>;

  // `most` is how much may wait, of what goes first and of the rest.
  Workers(int threads, std::size_t most, Post post);
  // Finishes what was begun; what waits is dropped.
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  // Runs `work` on a worker, then `done` on the network's thread with an optional of its result, which is
  // empty when the work raised an exception. What `done` holds is let go of there, and never on a worker: a
  // connection may be waiting in it. False when too much waits already.
  template <class Work, class Done>
  bool Do(Work work, Done done, bool first = false) {
    // In a box, since only that is certain to leave nothing behind where it is moved from.
    auto box = std::make_shared<Done>(std::move(done));
    return Queue(
        [this, work = std::move(work), box = std::move(box)]() mutable {
          auto result = std::make_shared<std::optional<decltype(work())>>();
          try {
            result->emplace(work());
          } catch (const std::exception&) {
          }
          post_([box = std::move(box), result]() mutable { (*box)(std::move(*result)); });
        },
        first);
  }

 private:
  bool Queue(std::function<void()> job, bool first);
  void Run();

  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<std::function<void()>> first_, queue_;
  std::size_t most_;
  Post post_;
  bool ending_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace orv
