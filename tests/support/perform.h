#pragma once

#include <future>
#include <memory>
#include <string>

#include "orvane/platform/URLSession.h"

namespace orvane::test {

/// What a handler received.
struct TaskOutcome {
  DataTaskResult result;

  /// Returns the body, or "error CODE".
  std::string text() const {
    if (result.error) return "error " + std::to_string(result.error->code);
    return {result.body->begin(), result.body->end()};
  }
};

/// Starts a request. The future receives its outcome.
inline std::future<TaskOutcome> start(URLSession& session, URLRequest request) {
  auto promise = std::make_shared<std::promise<TaskOutcome>>();
  std::future<TaskOutcome> outcome = promise->get_future();
  session.startDataTask(std::move(request),
                        [promise](DataTaskResult result) { promise->set_value({std::move(result)}); });
  return outcome;
}

/// Returns the outcome of a request as text().
inline std::string perform(URLSession& session, URLRequest request) {
  return start(session, std::move(request)).get().text();
}

}  // namespace orvane::test
