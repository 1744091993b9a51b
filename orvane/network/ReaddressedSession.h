#pragma once

#include <memory>
#include <string>

#include "orvane/base/Export.h"
#include "orvane/platform/URLSession.h"

namespace orvane {

/// Sends the requests for the service's built-in address to another address, through another session: to
/// "https://identity.your-company.com" in a release, to "http://127.0.0.1:8080" during development.
///
/// Replaces serviceBaseURL() at the beginning of a request's URL, and changes nothing else. Requests to other
/// addresses pass unchanged. A request that fails over `https` is not repeated over `http`.
class ORVANE_API ReaddressedSession final : public URLSession {
 public:
  /// Sends requests to `address`: "http://" or "https://", a host, and optionally a port and a path. The
  /// paths of the calls are appended to it. Slashes at the end are removed. `session` carries out all
  /// requests and calls all handlers.
  ///
  /// Stops the process if `session` is null, or if `address` breaks one of these rules. The host is a name in
  /// ASCII, an IPv4 address, or an IPv6 address in brackets. The port is a number from 1 to 65535. The path
  /// has only letters, digits, "-", ".", "_", "~" and "/".
  ReaddressedSession(std::shared_ptr<URLSession> session, std::string address);

  void startDataTask(URLRequest request, DataTaskHandler handler) override;
  void cancelAllOperations() override;

 private:
  const std::shared_ptr<URLSession> session_;
  const std::string address_;
};

}  // namespace orvane
