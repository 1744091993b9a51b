// Stand-ins for UIKit and CoreTelephony.

#import <CoreTelephony/CTTelephonyNetworkInfo.h>
#import <UIKit/UIKit.h>

#include "tests/apple/standins/standins.h"

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
  return standins::facts().systemVersion;
}
- (NSString*)model {
  return standins::facts().model;
}
- (NSUUID*)identifierForVendor {
  NSString* const identifier = standins::facts().identifierForVendor;
  return identifier ? [[[NSUUID alloc] initWithUUIDString:identifier] autorelease] : nil;
}
@end

@implementation UIScreen
+ (UIScreen*)mainScreen {
  static UIScreen* const screen = [[UIScreen alloc] init];
  return screen;
}
- (CGRect)bounds {
  return {{0, 0}, standins::facts().bounds};
}
- (CGFloat)scale {
  return standins::facts().scale;
}
@end

@implementation CTCarrier
- (NSString*)carrierName {
  return standins::facts().carrierName;
}
@end

@implementation CTTelephonyNetworkInfo
- (CTCarrier*)subscriberCellularProvider {
  return [[[CTCarrier alloc] init] autorelease];
}
@end
