#pragma once

#include <optional>

#include "orvane/base/Value.h"

namespace orvane {

/// The compact JSON text of a map, in UTF-8. Nothing where it holds what JSON cannot say: not-a-number, an
/// infinity, a text or a key that is not UTF-8. Does not recurse.
std::optional<Bytes> writeJSON(const Map& map);

/// Likewise of any value.
std::optional<Bytes> writeJSON(const Value& value);

}  // namespace orvane
