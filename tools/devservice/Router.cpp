#include "tools/devservice/Router.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>
#include <iterator>
#include <utility>

#include "tools/devservice/hostOf.h"
#include "tools/devservice/makeReply.h"
#include "tools/support/appendHexEscape.h"

namespace devservice {
namespace {

/// Returns the text with all but printable ASCII escaped.
std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c >= ' ' && c <= '~') {
      result.push_back(c);
    } else {
      support::appendHexEscape(result, c);
    }
  }
  return result;
}

std::string lineOf(const LogEntry& entry) {
  std::string line =
      escaped(entry.method + " " + entry.path + " " + std::to_string(entry.status) + " " + entry.body);
  if (!entry.fault.empty()) line.append(", ").append(entry.fault);
  return line;
}

constexpr std::string_view healthPath = "/health";

/// The header fields of every reply of the page and /inspect. Only the page's own files may be scripts and
/// styles, no other site may frame or embed a reply, and no cache may keep a code.
/// A field of the same name in a reply replaces the one here.
constexpr std::pair<std::string_view, std::string_view> guards[] = {
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
     "base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
    {"Cache-Control", "no-store"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Referrer-Policy", "no-referrer"},
    {"X-Content-Type-Options", "nosniff"},
};

/// Returns the authority without the default port of http.
std::string_view shortest(std::string_view authority) {
  return authority.substr(0, authority.size() - (authority.ends_with(":80") ? 3 : 0));
}

}  // namespace

Router::Router(IdentityService& service, std::vector<std::string> hosts, Log log, std::string token)
    : service_(service),
      page_(service),
      inspector_(service, requests_),
      access_(std::move(token)),
      hosts_(std::move(hosts)),
      log_(std::move(log)) {}

HTTPReply Router::answer(const HTTPRequest& request) {
  // For programs that watch the service, under any host name. Reports only that it runs.
  if (request.path == healthPath && !request.isProxied && request.method != "CONNECT") {
    const bool isGet = request.method == "GET" || request.method == "HEAD";
    return isGet ? makeReply({Code::success, "serving", {}}) : refuseMethod("GET, HEAD");
  }
  if (request.method == "CONNECT" || !serves(request)) {
    std::string names;
    for (const std::string& host : hosts_) names.append(names.empty() ? "" : ", ").append(host);
    return makeRefusal(403, Code::otherHost, names);
  }
  if (request.method == "HEAD") {
    HTTPRequest whole = request;
    whole.method = "GET";
    return answer(whole);
  }
  if (!Page::owns(request.path) && !InspectEndpoint::owns(request.path)) return service_.answer(request);
  HTTPReply reply = answerDeveloper(request);
  reply.headers.insert(reply.headers.begin(), std::begin(guards), std::end(guards));
  return reply;
}

/// Answers requests for the page and /inspect.
HTTPReply Router::answerDeveloper(const HTTPRequest& request) {
  if (request.path == Access::formPath) return access_.enter(request);
  if (auto refusal = access_.refusal(request)) return *std::move(refusal);
  return Page::owns(request.path) ? page_.answer(request) : inspector_.answer(request);
}

std::uint64_t Router::log(const HTTPRequest& request, const HTTPReply& reply) {
  const bool isFrequent =
      Page::owns(request.path) || request.path == "/inspect/requests" || request.path == healthPath;
  if (isFrequent && reply.status < 400) return 0;
  if (InspectEndpoint::owns(request.path)) {
    // The log on the page shows what an application sends, and scripts are not the application.
    RequestLog none;
    if (log_) log_(lineOf(none.add(request, reply)));
    return 0;
  }
  const LogEntry& entry = requests_.add(request, reply);
  if (log_) log_(lineOf(entry));
  return entry.id;
}

/// Returns true if the request is meant for this service. As a proxy it serves its hosts alone. A request
/// that is sent to it directly may also name an address, since a phone or a container may know the service by
/// another one than the service does.
bool Router::serves(const HTTPRequest& request) const {
  const auto field = request.header("Host");
  if (!field) return !request.isProxied;
  const auto isOwn = [&](const std::string& host) {
    if (request.isProxied) return boost::beast::iequals(shortest(host), shortest(*field));
    return boost::beast::iequals(hostOf(host), hostOf(*field));
  };
  return std::ranges::any_of(hosts_, isOwn) || (!request.isProxied && isUnforgeable(hostOf(*field)));
}

}  // namespace devservice
