#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "orvane/orvane.h"

namespace signin {

/// Asks a development service what it knows of a mobile number. Runs the host's main queue, so it is for the main
/// thread alone.
class InspectClient {
 public:
  /// `authority` is the service's HOST:PORT.
  explicit InspectClient(std::string authority);

  /// Returns true if a development service answers there.
  bool isThere() { return inspect().has_value(); }

  /// Returns a text that the service knows of the number, such as its "code".
  std::optional<std::string> known(std::string_view fact, const std::string& mobile);

 private:
  std::optional<orvane::Map> inspect();

  const std::string url_;
  orvane::NetworkTool tool_;  // With a session of its own, which nothing traces.
};

}  // namespace signin
