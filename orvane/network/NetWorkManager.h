#pragma once

#include "orvane/network/NetworkTool.h"

namespace orvane {

/// The library's own front to NetworkTool. All service calls share its one tool and with it the stored header
/// set. May be used from any thread.
class NetworkManager {
 public:
  /// Returns the shared instance, which is made on first use and never destroyed.
  static NetworkManager& sharedManager();

  NetworkManager();
  NetworkManager(const NetworkManager&) = delete;
  NetworkManager& operator=(const NetworkManager&) = delete;
  virtual ~NetworkManager();

  // These call the tool's operations of the same names; addHeaders calls addHeader.
  virtual void requestJSON(HTTPMethod method, std::string_view url,
                           const std::optional<Parameters>& parameters, NetworkTool::Completion completion);
  virtual void addHeaders(Headers headers);
  virtual void cancleAllNetwork();

 private:
  NetworkTool net_;
};

}  // namespace orvane
