#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "tools/support/Secrets.h"

namespace signin {

/// Writes requests and replies as lines of text, without the secrets. Its functions may be called from any
/// thread.
class Trace {
 public:
  /// `configuration` is that of the session that sends the requests.
  Trace(orvane::HostSessionConfiguration configuration, std::shared_ptr<const support::Secrets> secrets);

  /// Returns the request as a curl command on one line. The command reaches the service the way the session
  /// does.
  std::string requestLine(const orvane::URLRequest& request) const;

  /// Returns the outcome of the request to `url` on one line, with the time that it took. A long body is cut.
  std::string replyLine(std::string_view url, const orvane::DataTaskResult& result,
                        std::chrono::milliseconds took) const;

 private:
  std::string headerWord(const orvane::HeaderField& field) const;

  const orvane::HostSessionConfiguration configuration_;
  const std::shared_ptr<const support::Secrets> secrets_;
};

}  // namespace signin
