#include "tools/devservice/RequestLog.h"

#include <algorithm>
#include <iterator>

#include "tools/devservice/Limits.h"
#include "tools/support/Json.h"

namespace devservice {
namespace {

using support::Json;

// The index is a TransportFault.
constexpr std::string_view faultNotes[] = {"", "delayed", "dropped", "cut", "reset", "not answered"};
static_assert(std::size(faultNotes) == static_cast<std::size_t>(TransportFault::silence) + 1);

std::string cut(std::string_view text) {
  return std::string(text.substr(0, maxLogText));
}

/// Returns the object with its first members, in their order, without what its objects and arrays contain.
/// Returns something else if the text is not an object.
Json firstMembers(std::string_view text) {
  std::size_t count = 0;
  const auto keeps = [&count](int depth, Json::parse_event_t event, const Json&) {
    return depth < 2 && (event != Json::parse_event_t::key || ++count <= maxLoggedMembers);
  };
  return Json::parse(text, keeps, false);
}

/// Returns the members that are strings, as JSON. A call has no other members.
std::string membersIn(const Json& object) {
  Json members = Json::object();
  for (const auto& [name, value] : object.items()) {
    if (value.is_string()) members[cut(name)] = cut(value.get_ref<const std::string&>());
  }
  return support::dumped(members);
}

}  // namespace

const LogEntry& RequestLog::add(const HTTPRequest& request, const HTTPReply& reply) {
  const bool isBrief = reply.body.size() <= maxLogText;
  LogEntry entry{
      .id = ++count_,
      .time = std::chrono::system_clock::now(),
      .duration = {},
      .method = cut(request.method),
      .path = cut(request.path),
      .headers = {},
      .mobile = {},
      .members = {},
      .text = {},
      .textSize = request.body.size(),
      .status = reply.status,
      .body = isBrief ? reply.body : std::to_string(reply.body.size()) + " bytes",
      .bodySize = reply.body.size(),
      .fault = faultNotes[static_cast<std::size_t>(reply.fault)],
  };
  for (const auto& [name, value] : request.headers) {
    if (entry.headers.size() < maxLoggedFields) entry.headers.emplace_back(cut(name), cut(value));
  }
  const Json object = request.body.size() <= maxBodySize ? firstMembers(request.body) : Json();
  if (object.is_object()) {
    entry.members = membersIn(object);
    if (const auto mobile = object.find("mobile"); mobile != object.end() && mobile->is_string())
      entry.mobile = cut(mobile->get_ref<const std::string&>());
  } else {
    entry.text = cut(request.body);
  }
  if (entries_.size() == maxLogEntries) entries_.pop_front();
  return entries_.emplace_back(std::move(entry));
}

void RequestLog::finish(std::uint64_t id, std::chrono::steady_clock::duration duration) {
  const auto entry = std::ranges::find(entries_, id, &LogEntry::id);
  if (entry != entries_.end()) entry->duration = std::chrono::round<std::chrono::milliseconds>(duration);
}

}  // namespace devservice
