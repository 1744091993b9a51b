#include "orvane/device/ScreenSize.h"

namespace orvane {

ScreenSize screenSizeForScreen(double longestSide, double scale) noexcept {
  if (longestSide == 480 || longestSide == 568) return ScreenSize::Screen3_5Inch;
  if (longestSide == 667) return scale == 3 ? ScreenSize::Screen5_5Inch : ScreenSize::Screen4_7Inch;
  if (longestSide == 736) return ScreenSize::Screen5_5Inch;
  return ScreenSize::UnknownSize;
}

}  // namespace orvane
