#include "tools/devservice/isLocalCaller.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>

#include "tools/devservice/hostOf.h"
#include "tools/devservice/isFromOwnOrigin.h"
#include "tools/support/localHosts.h"

namespace devservice {
namespace {

bool isLocalHost(std::string_view host) {
  return std::ranges::any_of(support::localHosts,
                             [&](auto name) { return boost::beast::iequals(name, host); });
}

}  // namespace

bool isLocalCaller(const HTTPRequest& request) {
  if (!request.peer.starts_with("127.") && request.peer != "::1") return false;
  return isLocalHost(hostOf(request.header("Host").value_or(""))) && isFromOwnOrigin(request);
}

}  // namespace devservice
