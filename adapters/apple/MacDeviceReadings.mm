// The readings on macOS, where a device has neither a vendor identifier nor a carrier nor a built-in screen
// to report.

#include <TargetConditionals.h>
#if TARGET_OS_OSX

#import "adapters/apple/AppleDeviceReadings.h"
#import "adapters/apple/platformString.h"

namespace orvane {

std::string AppleDeviceReadings::systemVersion() const {
  @autoreleasepool {
    const NSOperatingSystemVersion version = [[NSProcessInfo processInfo] operatingSystemVersion];
    return utf8([NSString stringWithFormat:@"%ld.%ld.%ld", static_cast<long>(version.majorVersion),
                                           static_cast<long>(version.minorVersion),
                                           static_cast<long>(version.patchVersion)]);
  }
}

std::string AppleDeviceReadings::model() const {
  return "Mac";
}

std::optional<std::string> AppleDeviceReadings::identifierForVendor() const {
  return std::nullopt;
}

std::optional<std::string> AppleDeviceReadings::carrierName() const {
  return std::nullopt;
}

ScreenBounds AppleDeviceReadings::screenBounds() const {
  return {};
}

double AppleDeviceReadings::screenScale() const {
  return 1;
}

}  // namespace orvane

#endif
