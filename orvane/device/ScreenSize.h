#pragma once

#include "orvane/base/Enumeration.h"
#include "orvane/base/Export.h"

namespace orvane {

/// Classes of screens, named after their diagonals.
enum class ScreenSize { UnknownSize, Screen3_5Inch, Screen4Inch, Screen4_7Inch, Screen5_5Inch };

/// The class of a screen whose longest side measures `longestSide` points at `scale` pixels a point, both
/// compared exactly. Screen4Inch is never the answer: 568 points count as Screen3_5Inch. May be called from
/// any thread.
ORVANE_API ScreenSize screenSizeForScreen(double longestSide, double scale) noexcept;

}  // namespace orvane
