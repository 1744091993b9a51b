#include "tools/devservice/Router.h"

#include <algorithm>
#include <utility>

#include "tools/devservice/Faults.h"

namespace devservice {
namespace {

std::string escaped(std::string_view text) {
  constexpr char digits[] = "0123456789abcdef";
  std::string result;
  for (const char c : text) {
    if (c >= ' ' && c <= '~') {
      result += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      result.append("\\x").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
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

/// Without the port that http has anyway.
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

Reply Router::answer(const Request& request) {
  if (request.method == "CONNECT" || (request.isProxied && !serves(request.header("Host").value_or("")))) {
    std::string names;
    for (const std::string& host : hosts_) names.append(names.empty() ? "" : ", ").append(host);
    return makeRefusal(403, Code::otherHost, names);
  }
  if (request.method == "HEAD") {
    Request whole = request;
    whole.method = "GET";
    return answer(whole);
  }
  if (Page::owns(request.path)) return page_.answer(request);
  return request.path == "/inspect" ? inspector_.answer(request) : service_.answer(request);
}

std::uint64_t Router::log(const Request& request, const Reply& reply) {
  if (Page::owns(request.path) && reply.status < 400) return 0;
  if (request.path == "/inspect") {
    // Scripts ask this, not phones.
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
    return equalIgnoringCase(shortest(host), shortest(authority));
  });
}

}  // namespace devservice
