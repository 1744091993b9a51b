#pragma once

#include <optional>

#include "orvane/base/Value.h"

namespace orvane {

/// Returns the compact JSON text of `map`, in UTF-8. Returns nullopt if JSON cannot express a value in it:
/// not-a-number, an infinity, or a string or key that is not UTF-8. Does not recurse.
std::optional<Bytes> writeJSON(const Map& map);

/// Returns the JSON text of any value, by the same rules.
std::optional<Bytes> writeJSON(const Value& value);

}  // namespace orvane
