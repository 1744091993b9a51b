#pragma once

#include "orvane/base/Export.h"
#include "orvane/base/rawValue.h"

namespace orvane {

/// Classes of screens, named after their diagonals in inches.
enum class ScreenSize { UnknownSize, Screen3_5Inch, Screen4Inch, Screen4_7Inch, Screen5_5Inch };

/// Returns the class of a screen whose longest side measures `longestSide` points, at `scale` pixels per
/// point. Compares both exactly. May be called from any thread.
///
/// Promised: a side of 568 points, which is that of a 4-inch screen, is Screen3_5Inch. Screen4Inch is never
/// returned. Applications that tell screens apart by these classes keep seeing what they always saw.
ORVANE_API ScreenSize screenSizeForScreen(double longestSide, double scale) noexcept;

}  // namespace orvane
