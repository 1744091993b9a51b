#pragma once

#include <memory>
#include <string>
#include <vector>

#include "orvane/base/Export.h"
#include "orvane/platform/URLSession.h"

namespace orvane {

/// Sends `http` requests for chosen hosts over `https`, by way of another session. The library's own address
/// is plain HTTP; an application that knows its service to speak HTTPS, too, wraps its session in this one.
///
/// Only the URL changes, and in it only the scheme, and an explicit port 80, which becomes 443. Any other
/// port stays. A request for another host, or with another scheme, passes unchanged. Nothing is sent before
/// the change, and a request that fails over `https` is not repeated over `http`. The inner session carries
/// out the redirects: it must refuse those that lead back to `http`, as the sessions of this library do.
class ORVANE_API HTTPSUpgradeSession final : public URLSession {
 public:
  /// Upgrades requests for `hosts`, which are compared as they stand in the URL, ignoring case. Calls to
  /// `session`, which must not be null (the process stops), carry out all requests and call all handlers.
  HTTPSUpgradeSession(std::shared_ptr<URLSession> session, std::vector<std::string> hosts);

  void startDataTask(URLRequest request, DataTaskHandler handler) override;
  void cancelAllOperations() override;

 private:
  const std::shared_ptr<URLSession> session_;
  const std::vector<std::string> hosts_;
};

}  // namespace orvane
