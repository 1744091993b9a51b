#include "tools/devservice/isLocalCaller.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>
#include <iterator>

#include "tools/devservice/hostOf.h"

namespace devservice {
namespace {

constexpr std::string_view localHosts[] = {"localhost", "127.0.0.1", "[::1]"};

bool isLocalHost(std::string_view host) {
  return std::ranges::any_of(localHosts, [&](auto name) { return boost::beast::iequals(name, host); });
}

}  // namespace

bool isLocalCaller(const HTTPRequest& request) {
  if (!request.peer.starts_with("127.") && request.peer != "::1") return false;
  const std::string_view host = request.header("Host").value_or("");
  if (!isLocalHost(hostOf(host))) return false;
  if (const auto origin = request.header("Origin"))
    return boost::beast::iequals(*origin, "http://" + std::string(host));
  const std::string_view site = request.header("Sec-Fetch-Site").value_or("none");
  if (site == "none" || site == "same-origin") return true;
  return request.method == "GET" && request.path == "/" && request.header("Sec-Fetch-Mode") == "navigate" &&
         request.header("Sec-Fetch-Dest") == "document";
}

}  // namespace devservice
