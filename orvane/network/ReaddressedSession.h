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
/// addresses pass unchanged. Nothing is sent before the change. A request that fails over `https` is not
/// repeated over `http`.
class ORVANE_API ReaddressedSession final : public URLSession {
 public:
  /// Sends requests to `address`: "http://" or "https://", a host, and perhaps a port and a path, which the
  /// paths of the calls follow. Slashes at the end are removed. `session` carries out all requests and calls
  /// all handlers.
  ///
  /// Stops the process if `session` is null or `address` is not as follows. A host is a name in ASCII or
  /// an IP address, one of version 6 in brackets; a port is a number from 1 to 65535; and a path has letters,
  /// digits, "-", ".", "_", "~" and "/".
  ReaddressedSession(std::shared_ptr<URLSession> session, std::string address);

  void startDataTask(URLRequest request, DataTaskHandler handler) override;
  void cancelAllOperations() override;

 private:
  const std::shared_ptr<URLSession> session_;
  const std::string address_;
};

}  // namespace orvane
