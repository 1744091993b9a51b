#pragma once

#include <functional>
#include <optional>

#include "orvane/base/Error.h"
#include "orvane/platform/URLRequest.h"

namespace orvane {

/// What is told of a response beside its body.
struct HTTPResponse {
  int statusCode = 0;  ///< The HTTP status.
};

/// What came of a data task. A success has a body, possibly empty, and a response, whatever its status; a
/// failure has an error and neither.
struct DataTaskResult {
  std::optional<Bytes> body;             ///< Decompressed.
  std::optional<HTTPResponse> response;  ///< The last one, after redirects.
  ErrorPtr error;                        ///< The session's own, or null.
};

/// Takes what came of a data task.
using DataTaskHandler = std::function<void(DataTaskResult result)>;

/// Runs requests in the background. May be used from any thread.
class ORVANE_API URLSession {
 public:
  URLSession() = default;
  URLSession(const URLSession&) = delete;
  URLSession& operator=(const URLSession&) = delete;
  virtual ~URLSession();

  /// Starts one request and returns. `handler` is called exactly once, or not at all after
  /// cancelAllOperations, on the session's serial background queue: never inside this call, never on the main
  /// queue, one handler at a time. It is released either way. A task outlives the session object that started
  /// it.
  virtual void startDataTask(URLRequest request, DataTaskHandler handler) = 0;

  /// Drops the handlers that wait on the session's queue and have not started. Transfers go on.
  virtual void cancelAllOperations() = 0;
};

}  // namespace orvane
