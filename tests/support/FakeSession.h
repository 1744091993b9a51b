#pragma once

#include <atomic>
#include <deque>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include "adapters/host/HandlerQueue.h"

namespace orvane::test {

/// A session that holds requests until the test answers them, and calls handlers on a thread of its own.
class FakeSession final : public URLSession {
 public:
  ~FakeSession() override {
    queue_.close();
    thread_.join();
  }

  void startDataTask(URLRequest request, DataTaskHandler handler) override {
    const std::lock_guard lock(mutex_);
    requests.push_back(std::move(request));
    held_.push_back(std::move(handler));
  }

  void cancelAllOperations() override {
    queue_.cancelAll();
    ++cancellations;
  }

  /// Lets the handler of the oldest unanswered request come with `result`, on the session's thread.
  void post(DataTaskResult result) {
    std::vector<HandlerCall> calls;
    {
      const std::lock_guard lock(mutex_);
      calls.push_back({std::move(held_.front()), std::move(result)});
      held_.pop_front();
    }
    queue_.post(calls);
  }

  /// Likewise, and waits until that handler has returned.
  void answer(DataTaskResult result) {
    post(std::move(result));
    std::promise<void> returned;
    std::vector<HandlerCall> calls = {{[&returned](const auto&) { returned.set_value(); }, {}}};
    queue_.post(calls);
    returned.get_future().wait();
  }
  void answer(std::string_view body) {
    answer(DataTaskResult{Bytes(body.begin(), body.end()), HTTPResponse{200}, nullptr});
  }

  std::thread::id threadId() const { return thread_.get_id(); }

  std::vector<URLRequest> requests;
  std::atomic<int> cancellations = 0;

 private:
  std::mutex mutex_;
  std::deque<DataTaskHandler> held_;
  HandlerQueue queue_;
  std::thread thread_{[this] { queue_.run(); }};
};

}  // namespace orvane::test
