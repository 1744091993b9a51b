#pragma once

#include <deque>
#include <string_view>
#include <thread>
#include <vector>

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

/// Holds requests until the test answers them. Used on the test's thread alone.
class FakeSession final : public URLSession {
 public:
  void startDataTask(URLRequest request, DataTaskHandler handler) override {
    requests.push_back(std::move(request));
    held_.push_back(std::move(handler));
  }
  void cancelAllOperations() override { ++cancellations; }

  /// Answers the oldest unanswered request: calls its handler on another thread, and waits for its return.
  void answer(DataTaskResult result) {
    const DataTaskHandler handler = std::move(held_.front());
    held_.pop_front();
    std::thread([&] {
      if (handler) handler(std::move(result));
    }).join();
  }
  void answer(std::string_view body) { answer(replied(body)); }

  /// Forgets everything.
  void reset() {
    requests.clear();
    held_.clear();
    cancellations = 0;
  }

  std::vector<URLRequest> requests;
  int cancellations = 0;

 private:
  std::deque<DataTaskHandler> held_;
};

}  // namespace orvane::test
