#pragma once

#include <optional>

#include "orvane/base/Value.h"

namespace orvane {

/// Returns the picture that an array of byte values holds: numbers from 0 to 255, or strings of such numbers.
/// Returns nullopt if an element is anything else. Moves the bytes out of `elements` if it has them packed.
/// Sets no limit: the session limits the reply, by default to 64 MiB on ordinary machines.
std::optional<Bytes> pictureBytes(Array& elements);

}  // namespace orvane
