#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "orvane/orvane.h"

namespace signin {

/// Asks a development service what it knows of a mobile number. Runs the host's main queue, so it must be
/// used on the main thread.
class InspectClient {
 public:
  /// `authority` is the service's HOST:PORT.
  explicit InspectClient(std::string authority);

  /// Returns true if a development service answers there.
  bool isThere();

  /// Returns the text of that name, such as "code", from what the service knows of the number. Returns
  /// nullopt if the service does not know it.
  std::optional<std::string> known(std::string_view fact, const std::string& mobile);

 private:
  std::optional<orvane::Map> inspect(std::string_view mobile);

  const std::string url_;
  orvane::NetworkTool tool_;  // Has a session of its own, so that a trace does not show its requests.
};

}  // namespace signin
