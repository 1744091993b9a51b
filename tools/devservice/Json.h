#pragma once

#include <nlohmann/json.hpp>
#include <optional>

namespace devservice {

/// Members stay in the order in which they are written.
using Json = nlohmann::ordered_json;

template <typename Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

}  // namespace devservice
