#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>

#include "orvane/platform/URLSession.h"

namespace orvane {

/// Counts the tasks of any other session that are under way, so that a program can wait for their end.
class CountedSession final : public URLSession {
 public:
  explicit CountedSession(std::shared_ptr<URLSession> session) : session_(std::move(session)) {}

  void startDataTask(URLRequest request, DataTaskHandler handler) override {
    session_->startDataTask(std::move(request),
                            [counted = count(), handler = std::move(handler)](DataTaskResult result) {
                              if (handler) handler(std::move(result));
                            });
  }
  void cancelAllOperations() override { session_->cancelAllOperations(); }

  /// Waits until no task is under way, at most for `limit`. Returns true if none is.
  bool waitUntilIdle(std::chrono::milliseconds limit) {
    std::unique_lock lock(tasks_->mutex);
    return tasks_->ended.wait_for(lock, limit, [this] { return tasks_->number == 0; });
  }

 private:
  struct Tasks {
    std::mutex mutex;
    std::condition_variable ended;
    int number = 0;
  };

  /// Counts a task until the last copy of the result is gone: a session releases its handler in any case.
  std::shared_ptr<void> count() {
    {
      const std::lock_guard lock(tasks_->mutex);
      ++tasks_->number;
    }
    return {tasks_.get(), [tasks = tasks_](void*) {
              const std::lock_guard lock(tasks->mutex);
              --tasks->number;
              tasks->ended.notify_all();
            }};
  }

  const std::shared_ptr<URLSession> session_;
  const std::shared_ptr<Tasks> tasks_ = std::make_shared<Tasks>();
};

}  // namespace orvane
