#pragma once

#include <optional>

#include "orvane/base/Value.h"

namespace orvane {

/// The picture in an array of byte values: numbers from 0 to 255, or texts of such numbers. Nothing where an
/// element is anything else. Takes the bytes out of `elements` where they lie there ready.
std::optional<Bytes> pictureBytes(Array& elements);

}  // namespace orvane
