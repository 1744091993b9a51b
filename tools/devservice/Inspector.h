#pragma once

#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Message.h"
#include "tools/devservice/RequestLog.h"

namespace devservice {

/// /inspect, for scripts on this machine: what is known of the numbers, waiting for a text message, and
/// forgetting everything.
class Inspector {
 public:
  /// Both have to outlive the inspector.
  Inspector(IdentityService& service, RequestLog& log) : service_(service), log_(log) {}

  Reply answer(const Request& request);

 private:
  Reply inspect(const Request& request) const;

  IdentityService& service_;
  RequestLog& log_;
};

}  // namespace devservice
