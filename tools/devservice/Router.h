#pragma once

#include <functional>
#include <string_view>
#include <utility>

#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Message.h"
#include "tools/devservice/Page.h"

namespace devservice {

/// Leads each request to the service or to its page, and keeps the log of both.
class Router {
 public:
  /// Takes one line, without its end and with control characters escaped.
  using Log = std::function<void(std::string_view line)>;

  /// The service has to outlive the router.
  Router(IdentityService& service, Log log) : service_(service), log_(std::move(log)) {}

  /// The reply to a request of any kind.
  Reply answer(const Request& request);

  /// Logs what came of the request, unless the page asked for it to show itself.
  void log(const Request& request, const Reply& reply);

 private:
  IdentityService& service_;
  Page page_{service_};
  const Log log_;
};

}  // namespace devservice
