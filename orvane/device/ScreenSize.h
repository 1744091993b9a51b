#pragma once

#include "orvane/base/Export.h"
#include "orvane/base/rawValue.h"

namespace orvane {

/// Classes of screens, named after their diagonals in inches.
enum class ScreenSize { UnknownSize, Screen3_5Inch, Screen4Inch, Screen4_7Inch, Screen5_5Inch };

/// Returns the class of a screen whose longest side measures `longestSide` points, at `scale` pixels per
/// point. Compares both exactly. Never returns Screen4Inch: the service counts a side of 568 points as
/// Screen3_5Inch. May be called from any thread.
ORVANE_API ScreenSize screenSizeForScreen(double longestSide, double scale) noexcept;

}  // namespace orvane
