#pragma once

#include <functional>
#include <optional>

#include "orvane/base/Error.h"
#include "orvane/platform/Body.h"
#include "orvane/platform/URLRequest.h"

namespace orvane {

/// What is known of a response besides its body.
struct HTTPResponse {
  int statusCode = 0;  ///< The HTTP status code.
};

/// The outcome of a data task. A success has a response, with any status, and a body, which may be empty. A
/// failure has an error and neither of them.
struct DataTaskResult {
  std::optional<Body> body = {};              ///< After decompression.
  std::optional<HTTPResponse> response = {};  ///< The last one, if there were redirects.
  /// The session's own error, or null. Needs user information, such as a sentence for people under
  /// "NSLocalizedDescription": an error without it counts as a refusal, and errorMessage() returns its
  /// domain.
  ErrorPtr error = {};
};

/// Receives the outcome of a data task.
using DataTaskHandler = std::function<void(DataTaskResult result)>;

/// Carries out HTTP requests in the background. May be used from any thread.
class ORVANE_API URLSession {
 public:
  URLSession() = default;
  URLSession(const URLSession&) = delete;
  URLSession& operator=(const URLSession&) = delete;
  virtual ~URLSession();

  /// Starts one request and returns. Calls `handler` exactly once, on the session queue: a serial queue in
  /// the background, so never inside this call, never on the main queue, and one handler at a time. After
  /// cancelAllOperations() the handler may not be called at all. It is released in either case. If `handler`
  /// is empty, the outcome is dropped. A task continues if the session object is destroyed. Must not send a
  /// POST twice, because the service would act on it twice. The library itself repeats nothing.
  virtual void startDataTask(URLRequest request, DataTaskHandler handler) = 0;

  /// Drops the handlers that wait on the session queue and have not started. Does not stop any transfer.
  virtual void cancelAllOperations() = 0;
};

}  // namespace orvane
