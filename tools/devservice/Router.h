#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/devservice/HTTPReply.h"
#include "tools/devservice/HTTPRequest.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/InspectEndpoint.h"
#include "tools/devservice/Page.h"
#include "tools/devservice/RequestLog.h"

namespace devservice {

/// Leads each request to the service, its page or its inspection, and keeps the log. For one thread at a time.
class Router {
 public:
  /// Takes one line, without its end and with control characters escaped.
  using Log = std::function<void(std::string_view line)>;

  /// The service has to outlive the router. As a proxy it serves `hosts`, each as it stands in a URL.
  Router(IdentityService& service, std::vector<std::string> hosts, Log log);

  /// The reply to a request of any kind.
  HTTPReply answer(const HTTPRequest& request);

  /// Logs what is about to be sent, unless the page asked for it to show itself; the entry's number in the log,
  /// or 0.
  std::uint64_t log(const HTTPRequest& request, const HTTPReply& reply);

  /// Takes note how long that entry's request took, once its reply has been sent.
  void finish(std::uint64_t entry, std::chrono::steady_clock::duration duration) {
    requests_.finish(entry, duration);
  }

 private:
  bool serves(std::string_view authority) const;

  IdentityService& service_;
  RequestLog requests_;
  Page page_;
  InspectEndpoint inspector_;
  const std::vector<std::string> hosts_;
  const Log log_;
};

}  // namespace devservice
