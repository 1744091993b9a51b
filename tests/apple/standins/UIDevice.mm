// Stand-ins for UIKit and CoreTelephony.

#import <CoreTelephony/CTTelephonyNetworkInfo.h>
#import <UIKit/UIKit.h>

#include "tests/apple/standins/standins.h"

namespace {

NSString* text(const std::optional<std::string>& utf8) {
  return utf8 ? [NSString stringWithUTF8String:utf8->c_str()] : nil;
}

}  // namespace

standins::Facts& standins::facts() {
  static auto* const facts = new Facts;
  return *facts;
}

@implementation UIDevice
+ (UIDevice*)currentDevice {
  static UIDevice* const device = [[UIDevice alloc] init];
  return device;
}
- (NSString*)systemVersion {
  return text(standins::facts().systemVersion);
}
- (NSString*)model {
  return text(standins::facts().model);
}
- (NSUUID*)identifierForVendor {
  NSString* const identifier = text(standins::facts().identifierForVendor);
  return identifier ? [[[NSUUID alloc] initWithUUIDString:identifier] autorelease] : nil;
}
@end

@implementation UIScreen
+ (UIScreen*)mainScreen {
  static UIScreen* const screen = [[UIScreen alloc] init];
  return screen;
}
- (CGRect)bounds {
  return NSMakeRect(0, 0, standins::facts().bounds.width, standins::facts().bounds.height);
}
- (CGFloat)scale {
  return standins::facts().scale;
}
@end

@implementation CTCarrier
- (NSString*)carrierName {
  return text(standins::facts().carrierName);
}
@end

@implementation CTTelephonyNetworkInfo
- (CTCarrier*)subscriberCellularProvider {
  return standins::facts().hasCarrier ? [[[CTCarrier alloc] init] autorelease] : nil;
}
@end
