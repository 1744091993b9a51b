#include "orvane/device/OVDeviceInfoTool.h"

#import "adapters/apple/platformText.h"

#import "bindings/objc/include/Orvane/Orvane.h"
#import "bindings/objc/registerQualifiedName.h"

@implementation OVDeviceInfoTool

+ (void)load {
  orvane::registerQualifiedName(self);
}

+ (NSString*)getMEIDCode {
  return orvane::platformText(orvane::OVDeviceInfoTool::getMEIDCode());
}

+ (NSString*)getSystemName {
  return orvane::platformText(orvane::OVDeviceInfoTool::getSystemName());
}

+ (NSString*)getSystemVersion {
  return orvane::platformText(orvane::OVDeviceInfoTool::getSystemVersion());
}

+ (NSString*)getcarrierName {
  return orvane::platformText(orvane::OVDeviceInfoTool::getcarrierName());
}

- (instancetype)init {
  return [super init];
}

@end
