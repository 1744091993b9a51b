#pragma once

#include <string_view>

namespace devservice {

/// Returns the host in an authority, such as "[::1]" in "[::1]:8080".
std::string_view hostOf(std::string_view authority);

/// Returns true if no foreign site can have this host: it is a numeric address, or a name without a dot. Any
/// other name can be rebound: the site's owner makes it resolve to this machine, so that the site's scripts
/// in a browser reach the service as their own.
bool isUnforgeable(std::string_view host);

}  // namespace devservice
