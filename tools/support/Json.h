#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace support {

/// JSON whose members keep the order in which they are added.
using Json = nlohmann::ordered_json;

/// Returns the JSON, discarded if the text is not JSON. Its members are sorted by name. A `Json`
/// would compare each member with all before it, which takes up to a second for the largest body.
inline nlohmann::json parsed(std::string_view text) {
  return nlohmann::json::parse(text, nullptr, false);
}

/// Returns the value, or null without one.
template <typename Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

/// Returns the JSON on one line. Bytes that are not UTF-8 become U+FFFD.
inline std::string dumped(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace support
