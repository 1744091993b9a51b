#pragma once

#include <cstdint>

namespace orvane {

/// A number in decimal: `digits` times ten to the power `exponent`.
struct Decimal {
  std::uint64_t digits = 0;
  int exponent = 0;
};

/// Returns the same number with as few digits as possible.
Decimal withoutFinalZeros(Decimal decimal) noexcept;

/// Returns the decimal with the fewest digits that reads back as the magnitude of `real`, which must be
/// finite. Of several such decimals it returns the nearest.
Decimal shortestDecimal(double real) noexcept;

}  // namespace orvane
