#pragma once

#include <cstddef>
#include <string_view>

#include "orvane/base/Value.h"

namespace orvane {

/// Reads the byte values of a picture many at a time. Reads numbers from 0 to 255, each followed by a comma,
/// from `position` on. Appends them to `bytes`, and moves `position` past their commas. Stops before anything
/// else, such as a space, or up to 70 characters earlier. The caller reads on from there, number by number.
void readByteRun(std::string_view text, std::size_t& position, Bytes& bytes);

}  // namespace orvane
