#pragma once

#include <memory>
#include <string>
#include <vector>

#include "orvane/base/Export.h"
#include "orvane/platform/URLSession.h"

namespace orvane {

/// Sends `http` requests to chosen hosts over `https`, through another session. The library's own address is
/// plain HTTP; if the service speaks HTTPS too, an application wraps its session in this one.
///
/// Changes only the URL: the scheme becomes `https`, and an explicit port 80 becomes 443. Any other port
/// stays. A request to another host, or with another scheme, passes unchanged. Nothing is sent before the
/// change. A request that fails over `https` is not repeated over `http`. The inner session carries out
/// redirects; it must refuse those that lead back to `http`, as the sessions of this library do.
class ORVANE_API HTTPSUpgradeSession final : public URLSession {
 public:
  /// Upgrades requests to `hosts`, compared with the URL's host as it is written, ignoring case. `session`
  /// carries out all requests and calls all handlers. Stops the process if `session` is null.
  HTTPSUpgradeSession(std::shared_ptr<URLSession> session, std::vector<std::string> hosts);

  void startDataTask(URLRequest request, DataTaskHandler handler) override;
  void cancelAllOperations() override;

 private:
  const std::shared_ptr<URLSession> session_;
  const std::vector<std::string> hosts_;
};

}  // namespace orvane
