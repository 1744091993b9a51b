#include "tools/devservice/isLocalCaller.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>
#include <iterator>

#include "tools/devservice/hostOf.h"
#include "tools/devservice/isFromOwnOrigin.h"

namespace devservice {
namespace {

constexpr std::string_view localHosts[] = {"localhost", "127.0.0.1", "[::1]"};

bool isLocalHost(std::string_view host) {
  return std::ranges::any_of(localHosts, [&](auto name) { return boost::beast::iequals(name, host); });
}

}  // namespace

bool isLocalCaller(const HTTPRequest& request) {
  if (!request.peer.starts_with("127.") && request.peer != "::1") return false;
  return isLocalHost(hostOf(request.header("Host").value_or(""))) && isFromOwnOrigin(request);
}

}  // namespace devservice
