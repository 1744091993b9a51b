#pragma once

#include "orvane/network/NetworkTool.h"

namespace orvane {

/// The one NetworkTool that all service calls share, with its stored header set. May be used from any thread.
///
/// Promised: the names NetWorkManager of the file, NetworkManager of the class, and cancleAllNetwork.
class NetworkManager {
 public:
  /// Returns the shared instance, which is made on first use and never destroyed.
  static NetworkManager& sharedManager();

  NetworkManager();
  NetworkManager(const NetworkManager&) = delete;
  NetworkManager& operator=(const NetworkManager&) = delete;
  virtual ~NetworkManager();

  // These forward to the tool's operations of the same names; addHeaders forwards to addHeader.
  virtual void requestJSON(HTTPMethod method, std::string_view url,
                           const std::optional<Parameters>& parameters, NetworkTool::Completion completion);
  virtual void addHeaders(Headers headers);
  virtual void cancleAllNetwork();

 private:
  NetworkTool net_;
};

}  // namespace orvane
