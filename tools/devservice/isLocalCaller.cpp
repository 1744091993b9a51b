#include "tools/devservice/isLocalCaller.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>
#include <iterator>

namespace devservice {
namespace {

constexpr std::string_view localHosts[] = {"localhost", "127.0.0.1", "[::1]"};

bool isLocalHost(std::string_view host) {
  const std::size_t port = host.find_last_not_of("0123456789");
  if (port != host.npos && host[port] == ':') host = host.substr(0, port);
  return std::ranges::any_of(localHosts, [&](auto name) { return boost::beast::iequals(name, host); });
}

}  // namespace

bool isLocalCaller(const HTTPRequest& request) {
  if (!request.peer.starts_with("127.") && request.peer != "::1") return false;
  const std::string_view host = request.header("Host").value_or("");
  if (!isLocalHost(host)) return false;
  if (const auto origin = request.header("Origin"))
    return boost::beast::iequals(*origin, "http://" + std::string(host));
  const std::string_view site = request.header("Sec-Fetch-Site").value_or("none");
  return site == "none" || site == "same-origin" || request.header("Sec-Fetch-Mode") == "navigate";
}

}  // namespace devservice
