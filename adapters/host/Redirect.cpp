#include "adapters/host/Redirect.h"

#include <algorithm>
#include <initializer_list>
#include <string>

#include "orvane/platform/URLParts.h"

namespace orvane {
namespace {

bool keepsMethod(const URLRequest& request, int statusCode) {
  if (statusCode == 307 || statusCode == 308 || request.method() == "HEAD") return true;
  return statusCode != 303 && request.method() != "POST";
}

bool isSameOrigin(const URLParts& a, const URLParts& b) {
  return equalIgnoringCase(a.scheme, b.scheme) && equalIgnoringCase(a.host, b.host) &&
         a.portOrDefault() == b.portOrDefault();
}

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::any_of(names.begin(), names.end(),
                     [name](std::string_view one) { return equalIgnoringCase(one, name); });
}

}  // namespace

bool isSupportedScheme(std::string_view scheme) noexcept {
  return equalIgnoringCase(scheme, "http") || equalIgnoringCase(scheme, "https");
}

bool isRedirect(int statusCode) noexcept {
  return (statusCode >= 301 && statusCode <= 303) || statusCode == 307 || statusCode == 308;
}

std::variant<URLRequest, SessionFailure> redirect(const URLRequest& request, int statusCode,
                                                  std::string_view location) {
  const URLParts from = splitURL(request.url());
  const URLParts to = splitURL(location);
  const bool losesSecurity = equalIgnoringCase(from.scheme, "https") && equalIgnoringCase(to.scheme, "http");
  if (!isSupportedScheme(to.scheme) || losesSecurity) return SessionFailure::unsupportedURL;

  URLRequest next{std::string(location)};
  const bool keepsBody = keepsMethod(request, statusCode);
  if (keepsBody) {
    next.setMethod(request.method());
    if (request.body()) next.setBody(*request.body());
  }
  const bool keepsCredentials = isSameOrigin(from, to);
  for (const auto& [name, value] : request.headers()) {
    if (!keepsCredentials && isOneOf(name, {"Authorization", "Cookie", "Proxy-Authorization"})) continue;
    if (!keepsBody &&
        isOneOf(name, {"Content-Encoding", "Content-Language", "Content-Location", "Content-Type"}))
      continue;
    next.addValue(value, name);
  }
  return next;
}

}  // namespace orvane
