#pragma once

#include <chrono>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace devservice {

/// Members stay in the order in which they are written.
using Json = nlohmann::ordered_json;

template <typename Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

/// Milliseconds since 1970.
inline std::int64_t milliseconds(std::chrono::system_clock::time_point time) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

inline Json millisecondsOrNull(const std::optional<std::chrono::system_clock::time_point>& time) {
  return time ? Json(milliseconds(*time)) : Json();
}

/// On one line; what is not UTF-8 is replaced.
inline std::string dumped(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace devservice
