#pragma once

#include <future>
#include <memory>
#include <thread>

#include "orvane/platform/URLSession.h"

namespace orvane::test {

struct TaskOutcome {
  DataTaskResult result;
  std::thread::id thread;

  /// The body, or "error CODE".
  std::string text() const {
    if (result.error) return "error " + std::to_string(result.error->code);
    return {result.body->begin(), result.body->end()};
  }
};

/// Starts a request whose outcome comes through the future.
inline std::future<TaskOutcome> start(URLSession& session, URLRequest request) {
  auto promise = std::make_shared<std::promise<TaskOutcome>>();
  std::future<TaskOutcome> outcome = promise->get_future();
  session.startDataTask(std::move(request), [promise](DataTaskResult result) {
    promise->set_value({std::move(result), std::this_thread::get_id()});
  });
  return outcome;
}

inline std::string perform(URLSession& session, URLRequest request) {
  return start(session, std::move(request)).get().text();
}

}  // namespace orvane::test
