#pragma once

#include "tools/devservice/HTTPReply.h"
#include "tools/devservice/HTTPRequest.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/RequestLog.h"

namespace devservice {

/// Answers /inspect, for scripts on this machine: tells what the service knows of each mobile number, waits
/// for a text message, and resets the service. Not thread-safe.
class InspectEndpoint {
 public:
  /// Both must outlive the endpoint.
  InspectEndpoint(IdentityService& service, RequestLog& log) : service_(service), log_(log) {}

  /// Returns the reply to a request from a caller that may see the codes.
  HTTPReply answer(const HTTPRequest& request);

 private:
  HTTPReply inspect(const HTTPRequest& request) const;

  IdentityService& service_;
  RequestLog& log_;
};

}  // namespace devservice
