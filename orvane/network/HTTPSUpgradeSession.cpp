#include "orvane/network/HTTPSUpgradeSession.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "orvane/base/fatal.h"
#include "orvane/platform/URLParts.h"

namespace orvane {
namespace {

bool isPort80(std::string_view port) {
  port.remove_prefix(std::min(port.find_first_not_of('0'), port.size()));
  return port == "80";
}

/// Returns `url`, whose scheme is `http` and whose parts are `parts`, with the scheme `https`.
std::string upgraded(std::string_view url, const URLParts& parts) {
  std::string result = "https";
  url.remove_prefix(parts.scheme.size());
  if (!isPort80(parts.port)) return result.append(url);
  const auto portStart = static_cast<std::size_t>(parts.port.data() - url.data());
  return result.append(url.substr(0, portStart))
      .append("443")
      .append(url.substr(portStart + parts.port.size()));
}

}  // namespace

HTTPSUpgradeSession::HTTPSUpgradeSession(std::shared_ptr<URLSession> session, std::vector<std::string> hosts)
    : session_(std::move(session)), hosts_(std::move(hosts)) {
  if (!session_) fatal("HTTPSUpgradeSession: there is no session");
}

void HTTPSUpgradeSession::startDataTask(URLRequest request, DataTaskHandler handler) {
  const URLParts parts = splitURL(request.url());
  const auto isHost = [&](std::string_view host) { return equalIgnoringCase(host, parts.host); };
  if (equalIgnoringCase(parts.scheme, "http") && std::any_of(hosts_.begin(), hosts_.end(), isHost))
    request.setURL(upgraded(request.url(), parts));
  session_->startDataTask(std::move(request), std::move(handler));
}

void HTTPSUpgradeSession::cancelAllOperations() {
  session_->cancelAllOperations();
}

}  // namespace orvane
