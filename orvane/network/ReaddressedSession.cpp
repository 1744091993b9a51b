#include "orvane/network/ReaddressedSession.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "orvane/base/ascii.h"
#include "orvane/base/fatal.h"
#include "orvane/network/serviceBaseURL.h"
#include "orvane/platform/URLParts.h"

namespace orvane {
namespace {

bool isNameCharacter(char c) {
  return isLetter(c) || isDigit(c) || c == '-' || c == '.' || c == '_' || c == '~';
}

template <class IsCharacter>
bool consistsOf(std::string_view text, IsCharacter isCharacter) {
  return std::all_of(text.begin(), text.end(), isCharacter);
}

bool isHost(std::string_view host) {
  if (host.starts_with('[') && host.ends_with(']'))
    return host.size() > 2 && consistsOf(host.substr(1, host.size() - 2),
                                         [](char c) { return isHexDigit(c) || c == ':' || c == '.'; });
  return !host.empty() && consistsOf(host, isNameCharacter);
}

bool isPort(std::string_view port) {
  unsigned number = 0;
  const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), number);
  return error == std::errc() && end == port.data() + port.size() && number >= 1 && number <= 65535;
}

/// Returns `address` without slashes at its end, or stops the process if it is not an address.
std::string checked(std::string address) {
  const auto refuse = [](std::string_view reason) {
    fatal(std::string("ReaddressedSession: the address ").append(reason));
  };
  const URLParts parts = splitURL(address);
  if (!equalIgnoringCase(parts.scheme, "http") && !equalIgnoringCase(parts.scheme, "https"))
    refuse("does not begin with http:// or https://");
  if (!isHost(parts.host)) refuse("has no host, or one with a character that is not allowed");
  std::string_view rest(address);
  rest.remove_prefix(parts.scheme.size() + std::string_view("://").size());
  if (rest.data() != parts.host.data()) refuse("has a user name");
  rest.remove_prefix(parts.host.size());
  if (rest.starts_with(':')) {
    if (!isPort(parts.port)) refuse("has a port that is not a number from 1 to 65535");
    rest.remove_prefix(1 + parts.port.size());
  }
  if (!consistsOf(rest, [](char c) { return isNameCharacter(c) || c == '/'; }))
    refuse("has a query, a fragment, or a path with a character that is not allowed");
  address.erase(address.find_last_not_of('/') + 1);
  return address;
}

}  // namespace

ReaddressedSession::ReaddressedSession(std::shared_ptr<URLSession> session, std::string address)
    : session_(std::move(session)), address_(checked(std::move(address))) {
  if (!session_) fatal("ReaddressedSession: there is no session");
}

void ReaddressedSession::startDataTask(URLRequest request, DataTaskHandler handler) {
  std::string_view rest = request.url();
  if (rest.starts_with(serviceBaseURL())) {
    rest.remove_prefix(serviceBaseURL().size());
    // Otherwise the host name is a longer one that only begins with the service's.
    if (rest.empty() || rest.find_first_of("/?#") == 0) request.setURL(address_ + std::string(rest));
  }
  session_->startDataTask(std::move(request), std::move(handler));
}

void ReaddressedSession::cancelAllOperations() {
  session_->cancelAllOperations();
}

}  // namespace orvane
