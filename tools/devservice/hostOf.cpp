#include "tools/devservice/hostOf.h"

namespace devservice {

std::string_view hostOf(std::string_view authority) {
  const std::size_t colon = authority.find_last_not_of("0123456789");
  return colon != authority.npos && authority[colon] == ':' ? authority.substr(0, colon) : authority;
}

bool isUnforgeable(std::string_view host) {
  const bool isIPv6 =
      host.starts_with('[') && host.find_first_not_of("[]0123456789abcdefABCDEF:.%") == host.npos;
  const bool isIPv4 = host.find_first_not_of("0123456789.") == host.npos;
  return !host.empty() && (isIPv6 || isIPv4 || host.find('.') == host.npos);
}

}  // namespace devservice
