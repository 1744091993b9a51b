#pragma once

#include "tools/devservice/HTTPReply.h"
#include "tools/devservice/HTTPRequest.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/RequestLog.h"

namespace devservice {

/// /inspect, for scripts on this machine: what is known of the numbers, waiting for a text message, and
/// forgetting everything.
class InspectEndpoint {
 public:
  /// Both have to outlive the inspector.
  InspectEndpoint(IdentityService& service, RequestLog& log) : service_(service), log_(log) {}

  HTTPReply answer(const HTTPRequest& request);

 private:
  HTTPReply inspect(const HTTPRequest& request) const;

  IdentityService& service_;
  RequestLog& log_;
};

}  // namespace devservice
