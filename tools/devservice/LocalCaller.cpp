#include "tools/devservice/LocalCaller.h"

#include <algorithm>
#include <iterator>

namespace devservice {
namespace {

constexpr std::string_view localHosts[] = {"localhost", "127.0.0.1", "[::1]"};

bool isLocalHost(std::string_view host) {
  const std::size_t port = host.find_last_not_of("0123456789");
  if (port != host.npos && host[port] == ':') host = host.substr(0, port);
  return std::ranges::any_of(localHosts, [&](auto name) { return equalIgnoringCase(name, host); });
}

}  // namespace

bool isLocalCaller(const Request& request) {
  if (!request.peer.starts_with("127.") && request.peer != "::1") return false;
  if (!isLocalHost(request.header("Host").value_or(""))) return false;
  return !request.header("Origin") || isFromOwnPage(request);
}

bool isFromOwnPage(const Request& request) {
  const std::string own = "http://" + std::string(request.header("Host").value_or(""));
  return equalIgnoringCase(request.header("Origin").value_or(""), own);
}

}  // namespace devservice
