#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "orvane/platform/URLSession.h"

namespace orvane::test {

/// A session that holds requests until the test answers them, and calls handlers on a thread of its own.
class FakeSession final : public URLSession {
 public:
  ~FakeSession() override {
    std::unique_lock lock(mutex_);
    closed_ = true;
    lock.unlock();
    changed_.notify_all();
    thread_.join();
  }

  void startDataTask(URLRequest request, DataTaskHandler handler) override {
    const std::lock_guard lock(mutex_);
    requests.push_back(std::move(request));
    held_.push_back(std::move(handler));
  }

  void cancelAllOperations() override {
    std::deque<Call> dropped;
    const std::lock_guard lock(mutex_);
    dropped.swap(due_);
    ++cancellations;
  }

  /// Lets the handler of the oldest unanswered request come with `result`, on the session's thread.
  void post(DataTaskResult result) {
    {
      const std::lock_guard lock(mutex_);
      due_.push_back({std::move(held_.front()), std::move(result)});
      held_.pop_front();
    }
    changed_.notify_all();
  }

  /// Likewise, and waits until that handler has returned.
  void answer(DataTaskResult result) {
    post(std::move(result));
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return due_.empty() && !busy_; });
  }
  void answer(std::string_view body) {
    answer(DataTaskResult{Bytes(body.begin(), body.end()), HTTPResponse{200}, nullptr});
  }

  std::thread::id threadId() const { return thread_.get_id(); }

  std::vector<URLRequest> requests;
  int cancellations = 0;

 private:
  struct Call {
    DataTaskHandler handler;
    DataTaskResult result;
  };

  void run() {
    std::unique_lock lock(mutex_);
    for (;;) {
      changed_.wait(lock, [this] { return closed_ || !due_.empty(); });
      if (due_.empty()) return;
      {
        Call call = std::move(due_.front());
        due_.pop_front();
        busy_ = true;
        lock.unlock();
        call.handler(std::move(call.result));
      }
      lock.lock();
      busy_ = false;
      changed_.notify_all();
    }
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<DataTaskHandler> held_;
  std::deque<Call> due_;
  bool busy_ = false;
  bool closed_ = false;
  std::thread thread_{[this] { run(); }};
};

}  // namespace orvane::test
