// The readings on iOS.

#import <CoreTelephony/CTCarrier.h>
#import <CoreTelephony/CTTelephonyNetworkInfo.h>
#import <UIKit/UIKit.h>

#import "adapters/apple/AppleDeviceReadings.h"
#import "adapters/apple/text.h"

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
    CTTelephonyNetworkInfo* const info = [[[CTTelephonyNetworkInfo alloc] init] autorelease];
    // Deprecated, and without a successor that knows more.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
    return optionalUTF8([[info subscriberCellularProvider] carrierName]);
#pragma clang diagnostic pop
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
