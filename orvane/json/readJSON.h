#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "orvane/base/Value.h"

namespace orvane {

/// Reads one JSON text (RFC 8259) in UTF-8, with or without a byte order mark, whose top level is a map or an
/// array. Returns nullopt for any other text, for one that nests deeper than 512, and for one of more than a
/// million values, because a small reply can unfold to gigabytes of them. Every element, member and container
/// counts, but not the elements of an array of byte values. Keeps the first of duplicate keys. An integer
/// beyond 64 signed bits becomes a double. A number too large for a double is an error. Does not recurse.
std::optional<Value> readJSON(std::string_view text);

inline std::optional<Value> readJSON(std::span<const std::uint8_t> bytes) {
  return readJSON(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

}  // namespace orvane
