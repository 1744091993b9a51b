#pragma once

#include "orvane/network/NetworkTool.h"

namespace orvane {

/// The library's own front to its transport: one tool for all service calls, so that the header set which a
/// call installs is the one its request carries. May be used from any thread.
class NetworkManager {
 public:
  /// The shared instance; made once, on first use, and never destroyed.
  static NetworkManager& sharedManager();

  NetworkManager();
  NetworkManager(const NetworkManager&) = delete;
  NetworkManager& operator=(const NetworkManager&) = delete;
  virtual ~NetworkManager();

  // As the NetworkTool's operations; addHeaders is its addHeader.
  virtual void requestJSON(HTTPMethod method, std::string_view url,
                           const std::optional<Parameters>& parameters, NetworkTool::Completion completion);
  virtual void addHeaders(Headers headers);
  virtual void cancleAllNetwork();

 private:
  NetworkTool net_;
};

}  // namespace orvane
