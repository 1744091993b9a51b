#pragma once

#include <optional>
#include <string>

#include "orvane/base/Value.h"

namespace orvane::test {

/// Returns the bytes as a text, "none" if there are none.
inline std::string asText(const std::optional<Bytes>& bytes) {
  return bytes ? std::string(bytes->begin(), bytes->end()) : "none";
}

}  // namespace orvane::test
