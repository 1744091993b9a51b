#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/devservice/Access.h"
#include "tools/devservice/HTTPReply.h"
#include "tools/devservice/HTTPRequest.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/InspectEndpoint.h"
#include "tools/devservice/Page.h"
#include "tools/devservice/RequestLog.h"

namespace devservice {

/// Passes each request to the service, the page or /inspect, answers /health, and keeps the log. Not
/// thread-safe.
class Router {
 public:
  /// Receives a line without a line end, all but printable ASCII escaped as \xNN.
  using Log = std::function<void(std::string_view line)>;

  /// `service` must outlive the router. The router answers requests for `hosts`, each written as in a URL,
  /// and those that are sent to it directly by a numeric address or a name without a dot. It refuses all
  /// others. `log` may be empty. For `token` see Reach.
  Router(IdentityService& service, std::vector<std::string> hosts, Log log, std::string token = {});

  /// Returns the reply to any request.
  HTTPReply answer(const HTTPRequest& request);

  /// Logs a request whose reply is about to be sent. The page's own requests, and those for the log and
  /// /health, get no line and no entry unless they are refused. Requests for /inspect get a line but no
  /// entry. Returns the entry's id for finish(), or 0.
  std::uint64_t log(const HTTPRequest& request, const HTTPReply& reply);

  /// Sets the duration of that entry after its reply was sent.
  void finish(std::uint64_t entry, std::chrono::steady_clock::duration duration) {
    requests_.finish(entry, duration);
  }

 private:
  bool serves(const HTTPRequest& request) const;

  HTTPReply answerDeveloper(const HTTPRequest& request);

  IdentityService& service_;
  RequestLog requests_;
  Page page_;
  InspectEndpoint inspector_;
  const Access access_;
  const std::vector<std::string> hosts_;
  const Log log_;
};

}  // namespace devservice
