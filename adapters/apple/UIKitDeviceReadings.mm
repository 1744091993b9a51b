// The readings on iOS and on Mac Catalyst.

#include <TargetConditionals.h>
#if TARGET_OS_IPHONE

#import <CoreTelephony/CTCarrier.h>
#import <CoreTelephony/CTTelephonyNetworkInfo.h>
#import <UIKit/UIKit.h>

#import "adapters/apple/AppleDeviceReadings.h"
#import "adapters/apple/platformString.h"
#import "adapters/apple/retained.h"

// The carrier and the main screen are deprecated. Their successors do not report the same facts.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace orvane {

std::string AppleDeviceReadings::systemVersion() const {
  @autoreleasepool {
    return utf8([[UIDevice currentDevice] systemVersion]);
  }
}

std::string AppleDeviceReadings::model() const {
  @autoreleasepool {
    return utf8([[UIDevice currentDevice] model]);
  }
}

std::optional<std::string> AppleDeviceReadings::identifierForVendor() const {
  @autoreleasepool {
    return optionalUTF8([[[UIDevice currentDevice] identifierForVendor] UUIDString]);
  }
}

std::optional<std::string> AppleDeviceReadings::carrierName() const {
  @autoreleasepool {
    CTTelephonyNetworkInfo* const info = autoreleased([[CTTelephonyNetworkInfo alloc] init]);
    return optionalUTF8([[info subscriberCellularProvider] carrierName]);
  }
}

ScreenBounds AppleDeviceReadings::screenBounds() const {
  @autoreleasepool {
    const CGRect bounds = [[UIScreen mainScreen] bounds];
    return {bounds.size.width, bounds.size.height};
  }
}

double AppleDeviceReadings::screenScale() const {
  @autoreleasepool {
    return [[UIScreen mainScreen] scale];
  }
}

}  // namespace orvane

#endif
