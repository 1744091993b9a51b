#pragma once

#include <string_view>

#include "orvane/base/Export.h"

namespace orvane {

/// Returns the base URL of the identity service for which this library was built: "http://" and a host name,
/// without a port or a trailing slash.
ORVANE_API std::string_view serviceBaseURL() noexcept;

/// Returns the host name in serviceBaseURL().
ORVANE_API std::string_view serviceHost() noexcept;

}  // namespace orvane
