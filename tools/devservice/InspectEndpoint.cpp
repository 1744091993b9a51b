#include "tools/devservice/InspectEndpoint.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "tools/devservice/Json.h"
#include "tools/devservice/Target.h"
#include "tools/devservice/makeReply.h"

namespace devservice {
namespace {

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
           {{"call", millisecondsOrNull(dates.call)},
            {"picture", millisecondsOrNull(dates.picture)},
            {"message", millisecondsOrNull(dates.message)},
            {"login", millisecondsOrNull(dates.login)},
            {"facts", millisecondsOrNull(dates.facts)}}}};
}

/// Returns the parameter as a number, or 0 if it is missing. Returns nothing if it is not a number or above
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

HTTPReply jsonReply(const Json& json) {
  HTTPReply reply;
  reply.body = dumped(json);
  return reply;
}

}  // namespace

HTTPReply InspectEndpoint::answer(const HTTPRequest& request) {
  if (request.method == "GET") return inspect(request);
  if (request.method != "DELETE") return refuseMethod("GET, HEAD, DELETE");
  service_.forget();
  log_.clear();
  return makeReply({Code::success, "forgotten", {}});
}

HTTPReply InspectEndpoint::inspect(const HTTPRequest& request) const {
  constexpr std::string_view parameters[] = {"mobile", "wait", "after"};
  const Members query = queryMembers(request.query);
  for (const auto& [name, value] : query) {
    if (std::ranges::find(parameters, name) == std::end(parameters))
      return makeRefusal(400, Code::badMember, name);
  }
  if (query.empty()) {
    Json all = Json::object();
    for (const auto& [mobile, known] : service_.recent(maxNumbers)) all[mobile] = entryOf(known);
    return jsonReply(all);
  }
  const auto mobile = query.find("mobile");
  if (mobile == query.end()) return makeRefusal(400, Code::badMember, "mobile");
  const auto after = numberIn(query, "after", ~std::uint64_t{0});
  if (!after) return makeRefusal(400, Code::badMember, "after");
  const auto wait = numberIn(query, "wait", maxWait.count());
  if (!wait) return makeRefusal(400, Code::badMember, "wait");

  const auto known = service_.inspect(mobile->second);
  if (query.size() == 1) return known ? jsonReply(entryOf(*known)) : makeRefusal(404, Code::unknownNumber);
  if (known && known->messageId.value_or(0) > *after) return jsonReply(entryOf(*known));
  HTTPReply none{.status = 204, .body = {}};
  none.wait = std::chrono::milliseconds(*wait);
  return none;
}

}  // namespace devservice
