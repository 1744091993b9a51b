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

/// Returns the result of a transfer that brought `body`.
inline DataTaskResult replied(std::string_view body) {
  return {Bytes(body.begin(), body.end()), HTTPResponse{200}, nullptr};
}

/// Returns the result of a transfer that failed with `error`.
inline DataTaskResult failed(Error error) {
  return {std::nullopt, std::nullopt, std::make_shared<const Error>(std::move(error))};
}

/// Holds requests until the test answers them, and calls handlers on a thread of its own.
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

  /// Answers the oldest unanswered request: its handler receives `result`, later, on the session's thread.
  void post(DataTaskResult result) {
    const std::lock_guard lock(mutex_);
    due_.push_back([handler = std::move(held_.front()), result = std::move(result)] { handler(result); });
    held_.pop_front();
    queue_.async([this] { callNext(); });
  }

  /// Does the same, and waits until the handler has returned.
  void answer(DataTaskResult result) {
    post(std::move(result));
    std::promise<void> returned;
    queue_.async([&returned] { returned.set_value(); });
    returned.get_future().wait();
  }
  void answer(std::string_view body) { answer(replied(body)); }

  std::thread::id threadId() const { return thread_.get_id(); }

  std::vector<URLRequest> requests;
  std::atomic<int> cancellations = 0;

 private:
  /// Calls the next handler, if it was not cancelled.
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
