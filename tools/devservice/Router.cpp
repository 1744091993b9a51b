#include "tools/devservice/Router.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>
#include <utility>

#include "tools/devservice/appendHexEscape.h"
#include "tools/devservice/makeReply.h"

namespace devservice {
namespace {

/// Returns the text with all but printable ASCII escaped.
std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c >= ' ' && c <= '~') {
      result.push_back(c);
    } else {
      appendHexEscape(result, c);
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

/// Returns the authority without the default port of http.
std::string_view shortest(std::string_view authority) {
  return authority.substr(0, authority.size() - (authority.ends_with(":80") ? 3 : 0));
}

}  // namespace

Router::Router(IdentityService& service, std::vector<std::string> hosts, Log log)
    : service_(service),
      page_(service, requests_),
      inspector_(service, requests_),
      hosts_(std::move(hosts)),
      log_(std::move(log)) {}

HTTPReply Router::answer(const HTTPRequest& request) {
  if (request.method == "CONNECT" || (request.isProxied && !serves(request.header("Host").value_or("")))) {
    std::string names;
    for (const std::string& host : hosts_) names.append(names.empty() ? "" : ", ").append(host);
    return makeRefusal(403, Code::otherHost, names);
  }
  if (request.method == "HEAD") {
    HTTPRequest whole = request;
    whole.method = "GET";
    return answer(whole);
  }
  if (Page::owns(request.path)) return page_.answer(request);
  return request.path == "/inspect" ? inspector_.answer(request) : service_.answer(request);
}

std::uint64_t Router::log(const HTTPRequest& request, const HTTPReply& reply) {
  if (Page::owns(request.path) && reply.status < 400) return 0;
  if (request.path == "/inspect") {
    // The log on the page shows what an application sends, and scripts are not the application.
    RequestLog none;
    if (log_) log_(lineOf(none.add(request, reply)));
    return 0;
  }
  const LogEntry& entry = requests_.add(request, reply);
  if (log_) log_(lineOf(entry));
  return entry.id;
}

bool Router::serves(std::string_view authority) const {
  return std::ranges::any_of(hosts_, [authority](const std::string& host) {
    return boost::beast::iequals(shortest(host), shortest(authority));
  });
}

}  // namespace devservice
