#include "fuzz/fuzz.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "orvane/base/fatal.h"
#include "orvane/platform/makeDefaultPlatform.h"

namespace orvane {

// Two stand-ins for parts of the library: something to catch, and no platform but what is installed.
void fatal(std::string_view what) {
  throw Stop{std::string(what)};
}
Platform makeDefaultPlatform() {
  return {};
}

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "This does not hold: %s\n", what);
  std::abort();
}

nlohmann::json readByOther(std::string_view text) {
  using Json = nlohmann::json;
  using Event = Json::parse_event_t;
  require(text.size() < 1'000'000, "the text is too short for a million values");
  bool isTooDeep = false;
  std::map<int, std::set<std::string>> keys;  // of the object at each depth
  const auto apply = [&](int depth, Event event, Json& parsed) {
    isTooDeep |= depth >= 512 && (event == Event::object_start || event == Event::array_start);
    if (event == Event::object_start) keys[depth + 1].clear();
    // The first of duplicate keys wins.
    if (event == Event::key) return keys[depth].insert(parsed.get<std::string>()).second;
    const bool isBeyondRange = parsed.is_number_unsigned() && parsed.get<std::uint64_t>() > INT64_MAX;
    if (event == Event::value && isBeyondRange) parsed = parsed.get<double>();
    return true;
  };
  // To the library a NUL is the end of the text.
  Json value = text.find('\0') == text.npos ? Json::parse(text, apply, false) : Json();
  return value.is_structured() && !isTooDeep ? value : Json(Json::value_t::discarded);
}

}  // namespace orvane
