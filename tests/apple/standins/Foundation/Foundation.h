// GNUstep's Foundation, and what it lacks.
#pragma once

#ifndef NS_SWIFT_NAME
#define NS_SWIFT_NAME(name) __attribute__((swift_name(#name)))
#endif

#include_next <Foundation/Foundation.h>

typedef struct {
  NSInteger majorVersion, minorVersion, patchVersion;
} NSOperatingSystemVersion;

@interface NSProcessInfo (StandIn)
- (NSOperatingSystemVersion)operatingSystemVersion;
@end
