#pragma once

#include <atomic>
#include <deque>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include "orvane/platform/MainQueue.h"
#include "orvane/platform/URLSession.h"

namespace orvane::test {

/// A session that holds requests until the test answers them, and calls handlers on a thread of its own.
class FakeSession final : public URLSession {
 public:
  ~FakeSession() override {
    queue_.async([this] { queue_.stop(); });
    thread_.join();
  }

  void startDataTask(URLRequest request, DataTaskHandler handler) override {
    const std::lock_guard lock(mutex_);
    requests.push_back(std::move(request));
    held_.push_back(std::move(handler));
  }

  void cancelAllOperations() override {
    std::deque<std::function<void()>> dropped;
    const std::lock_guard lock(mutex_);
    dropped.swap(due_);
    ++cancellations;
  }

  /// Lets the handler of the oldest unanswered request come with `result`, on the session's thread.
  void post(DataTaskResult result) {
    const std::lock_guard lock(mutex_);
    due_.push_back([handler = std::move(held_.front()), result = std::move(result)] { handler(result); });
    held_.pop_front();
    queue_.async([this] { callNext(); });
  }

  /// Likewise, and waits until that handler has returned.
  void answer(DataTaskResult result) {
    post(std::move(result));
    std::promise<void> returned;
    queue_.async([&returned] { returned.set_value(); });
    returned.get_future().wait();
  }
  void answer(std::string_view body) {
    answer(DataTaskResult{Bytes(body.begin(), body.end()), HTTPResponse{200}, nullptr});
  }

  /// Makes the session as good as new.
  void forget() {
    const std::lock_guard lock(mutex_);
    requests.clear();
    held_.clear();
    due_.clear();
    cancellations = 0;
  }

  std::thread::id threadId() const { return thread_.get_id(); }

  std::vector<URLRequest> requests;
  std::atomic<int> cancellations = 0;

 private:
  /// Unless the handler was dropped meanwhile.
  void callNext() {
    std::function<void()> call;
    {
      const std::lock_guard lock(mutex_);
      if (due_.empty()) return;
      call = std::move(due_.front());
      due_.pop_front();
    }
    call();
  }

  std::mutex mutex_;
  std::deque<DataTaskHandler> held_;
  std::deque<std::function<void()>> due_;
  MainQueue queue_;
  std::thread thread_{[this] { queue_.run(); }};
};

}  // namespace orvane::test
