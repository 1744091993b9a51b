#pragma once

#include <string_view>

#include "orvane/base/Export.h"

namespace orvane {

/// The base URL of the identity service that this build of the library talks to: "http://", a host name, no
/// port and no trailing slash.
ORVANE_API std::string_view serviceBaseURL() noexcept;

/// The host name in it.
ORVANE_API std::string_view serviceHost() noexcept;

}  // namespace orvane
