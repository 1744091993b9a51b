#include "tools/devservice/InspectEndpoint.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>
#include <charconv>
#include <initializer_list>
#include <iterator>
#include <utility>
#include <vector>

#include "tools/devservice/makeReply.h"
#include "tools/support/HarFile.h"
#include "tools/support/Json.h"
#include "tools/support/Secrets.h"
#include "tools/support/Target.h"
#include "tools/support/milliseconds.h"

namespace devservice {
namespace {

using namespace support;

Json timeOrNull(const std::optional<std::chrono::system_clock::time_point>& time) {
  return time ? Json(milliseconds(*time)) : Json();
}

Json entryOf(const Inspection& known) {
  const Dates& dates = known.dates;
  return {{"picture", orNull(known.picture)},
          {"message", orNull(known.message)},
          {"messageId", orNull(known.messageId)},
          {"code", orNull(known.code)},
          {"facts", orNull(known.facts)},
          {"clientId", orNull(known.clientId)},
          {"signedIn", known.signedIn},
          {"times",
           {{"call", timeOrNull(dates.call)},
            {"picture", timeOrNull(dates.picture)},
            {"message", timeOrNull(dates.message)},
            {"login", timeOrNull(dates.login)},
            {"facts", timeOrNull(dates.facts)}}}};
}

/// Returns the parameter as a number, or 0 if it is missing. Returns nullopt if it is not a number or above
/// `most`.
std::optional<std::uint64_t> numberIn(const Members& query, std::string_view name, std::uint64_t most) {
  const auto found = query.find(name);
  if (found == query.end()) return 0;
  const std::string& text = found->second;
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isNumber = error == std::errc() && end == text.data() + text.size() && number <= most;
  return isNumber ? std::optional(number) : std::nullopt;
}

HTTPReply jsonReply(std::string json) {
  HTTPReply reply;
  reply.body = std::move(json);
  return reply;
}

/// Returns the first parameter that is none of the names, or an empty string.
std::string unknownIn(const Members& query, std::initializer_list<std::string_view> names) {
  const auto isUnknown = [&](const auto& entry) {
    return std::ranges::find(names, entry.first) == names.end();
  };
  const auto found = std::ranges::find_if(query, isUnknown);
  return found == query.end() ? std::string() : found->first;
}

/// Returns the name of the call that the request is, or an empty string.
std::string_view callOf(const LogEntry& entry) {
  const auto call = callAt(entry.path);
  return call ? callNames[static_cast<std::size_t>(*call) - 1] : "";
}

/// Adds what a saved log must not show of the request: its number, and the values of its secret members.
void addSecrets(const LogEntry& entry, Secrets& secrets) {
  secrets.addNumber(entry.mobile);
  const Json members = entry.members.empty() ? Json() : Json::parse(entry.members);
  for (const auto& [name, value] : members.items()) {
    if (Secrets::isSecretMember(name)) secrets.add(value.get<std::string>());
  }
  for (const auto& [name, value] : entry.headers) {
    if (Secrets::isSecretField(name)) secrets.add(value);
  }
}

/// Returns the body of a request if it is not an object. All of it may be a secret, since no number in it was
/// recognised.
std::optional<std::string> textOf(const LogEntry& entry, const Secrets& secrets) {
  if (entry.text.empty()) return std::nullopt;
  return secrets.areMasked() ? std::string(Secrets::mask) : entry.text;
}

Json shown(const LogEntry& entry, const Secrets& secrets) {
  Json headers = Json::object();
  for (const auto& [name, value] : entry.headers) headers[name] = secrets.maskedField(name, value);
  const bool hasMembers = !entry.members.empty();
  return {{"id", entry.id},
          {"time", milliseconds(entry.time)},
          {"duration", entry.duration ? Json(entry.duration->count()) : Json()},
          {"method", entry.method},
          {"path", secrets.masked(entry.path)},
          {"call", callOf(entry)},
          {"mobile", secrets.masked(entry.mobile)},
          {"headers", headers},
          {"members", hasMembers ? Json::parse(secrets.maskedBody(entry.members)) : Json()},
          {"text", orNull(textOf(entry, secrets))},
          {"status", entry.status},
          {"body", secrets.maskedBody(entry.body)},
          {"fault", entry.fault}};
}

Exchange exchangeOf(const LogEntry& entry, const Secrets& secrets) {
  // No reply is sent after these faults.
  constexpr std::string_view withoutReply[] = {"dropped", "reset", "not answered"};
  const bool hasReply = std::ranges::find(withoutReply, entry.fault) == std::end(withoutReply);
  const auto host = std::ranges::find_if(
      entry.headers, [](const auto& field) { return boost::beast::iequals(field.first, "Host"); });
  const bool isWhole = entry.body.size() == entry.bodySize;
  return {.start = entry.time,
          .duration = entry.duration.value_or(std::chrono::milliseconds(0)),
          .method = entry.method,
          .url = "http://" + (host == entry.headers.end() ? "localhost" : host->second) + entry.path,
          .headers = entry.headers,
          .requestBody = entry.members.empty() ? textOf(entry, secrets) : entry.members,
          .requestSize = entry.textSize,
          .status = hasReply ? entry.status : 0,
          .replyBody = hasReply && isWhole ? std::optional(entry.body) : std::nullopt,
          .replySize = hasReply ? entry.bodySize : 0,
          .comment = std::string(entry.fault)};
}

}  // namespace

HTTPReply InspectEndpoint::answer(const HTTPRequest& request) {
  const bool isLog = request.path != "/inspect";
  if (request.method == "GET") return isLog ? requests(request) : inspect(request);
  if (isLog) return refuseMethod("GET, HEAD");
  if (request.method != "DELETE") return refuseMethod("GET, HEAD, DELETE");
  service_.forget();
  log_.clear();
  return makeReply({Code::success, "forgotten", {}});
}

HTTPReply InspectEndpoint::inspect(const HTTPRequest& request) const {
  const Members query = queryMembers(request.query);
  if (const auto name = unknownIn(query, {"mobile", "wait", "after"}); !name.empty())
    return makeRefusal(400, Code::badMember, name);
  if (query.empty()) {
    Json all = Json::object();
    for (const auto& [mobile, known] : service_.recent(maxNumbers)) all[mobile] = entryOf(known);
    return jsonReply(dumped(all));
  }
  const auto mobile = query.find("mobile");
  if (mobile == query.end()) return makeRefusal(400, Code::badMember, "mobile");
  const auto after = numberIn(query, "after", ~std::uint64_t{0});
  if (!after) return makeRefusal(400, Code::badMember, "after");
  const auto wait = numberIn(query, "wait", maxWait.count());
  if (!wait) return makeRefusal(400, Code::badMember, "wait");

  const auto known = service_.inspect(mobile->second);
  if (query.size() == 1)
    return known ? jsonReply(dumped(entryOf(*known))) : makeRefusal(404, Code::unknownNumber);
  if (known && known->messageId.value_or(0) > *after) return jsonReply(dumped(entryOf(*known)));
  HTTPReply none{.status = 204, .body = {}};
  none.wait = std::chrono::milliseconds(*wait);
  return none;
}

HTTPReply InspectEndpoint::requests(const HTTPRequest& request) const {
  Members query = queryMembers(request.query);
  if (const auto name = unknownIn(query, {"mobile", "call", "since", "unmasked", "format"}); !name.empty())
    return makeRefusal(400, Code::badMember, name);
  const std::string &mobile = query["mobile"], &call = query["call"], &format = query["format"];
  const auto since = numberIn(query, "since", ~std::uint64_t{0} >> 1);
  const auto unmasked = numberIn(query, "unmasked", 1);
  if (!since) return makeRefusal(400, Code::badMember, "since");
  if (!unmasked) return makeRefusal(400, Code::badMember, "unmasked");
  if (!call.empty() && std::ranges::find(callNames, call) == std::end(callNames))
    return makeRefusal(400, Code::badMember, "call");
  if (!format.empty() && format != "har") return makeRefusal(400, Code::badMember, "format");

  Json all = Json::array();
  std::vector<std::string> entries;
  for (const LogEntry& entry : log_.entries()) {
    const bool isAsked = entry.mobile.find(mobile) != mobile.npos &&
                         (call.empty() || call == callOf(entry)) &&
                         static_cast<std::uint64_t>(milliseconds(entry.time)) >= *since;
    if (!isAsked) continue;
    Secrets secrets(*unmasked == 0);
    addSecrets(entry, secrets);
    if (format.empty()) {
      all.push_back(shown(entry, secrets));
    } else {
      entries.push_back(harEntry(exchangeOf(entry, secrets), secrets));
    }
  }
  return jsonReply(format.empty() ? dumped(all) : harFile("orvane-devservice", entries));
}

}  // namespace devservice
