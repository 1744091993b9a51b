#pragma once

#include <string_view>

#include "tools/devservice/HTTPReply.h"
#include "tools/devservice/HTTPRequest.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/RequestLog.h"

namespace devservice {

/// Answers /inspect and /inspect/requests, for the page and for scripts on this machine: reports what the
/// service knows about each mobile number and which requests it received, waits for a text message, and
/// resets the service. Not thread-safe.
class InspectEndpoint {
 public:
  /// Both must outlive the endpoint.
  InspectEndpoint(IdentityService& service, RequestLog& log) : service_(service), log_(log) {}

  /// Returns true if the endpoint answers requests for `path`.
  static bool owns(std::string_view path) { return path == "/inspect" || path == "/inspect/requests"; }

  /// Returns the reply to a request for a path that it owns, from a caller that may see the codes.
  HTTPReply answer(const HTTPRequest& request);

 private:
  HTTPReply inspect(const HTTPRequest& request) const;
  HTTPReply requests(const HTTPRequest& request) const;

  IdentityService& service_;
  RequestLog& log_;
};

}  // namespace devservice
