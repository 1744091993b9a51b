#pragma once

#include <cstdint>
#include <string>

namespace signin {

/// A host and a port.
struct Address {
  std::string host;  ///< A name, an IPv4 address, or an IPv6 address without brackets.
  std::uint16_t port = 0;

  /// Returns HOST:PORT as in a URL, with brackets around an IPv6 address.
  std::string authority() const;
};

}  // namespace signin
