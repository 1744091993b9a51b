#include "orvane/device/OVDeviceInfoTool.h"

#import "adapters/apple/platformString.h"

#import "bindings/objc/include/Orvane/Orvane.h"
#import "bindings/objc/registerQualifiedName.h"

@implementation OVDeviceInfoTool

+ (void)load {
  orvane::registerQualifiedName(self);
}

+ (NSString*)getMEIDCode {
  return orvane::platformString(orvane::OVDeviceInfoTool::getMEIDCode());
}

+ (NSString*)getSystemName {
  return orvane::platformString(orvane::OVDeviceInfoTool::getSystemName());
}

+ (NSString*)getSystemVersion {
  return orvane::platformString(orvane::OVDeviceInfoTool::getSystemVersion());
}

+ (NSString*)getcarrierName {
  return orvane::platformString(orvane::OVDeviceInfoTool::getcarrierName());
}

- (instancetype)init {
  return [super init];
}

@end
