#import "adapters/apple/platformText.h"
#import "orvane/apple/AppleSession.h"
#include "orvane/network/ReaddressedSession.h"
#include "orvane/network/serviceBaseURL.h"
#include "orvane/platform/Platform.h"

#import "bindings/objc/include/Orvane/Orvane.h"
#import "bindings/objc/registerQualifiedName.h"

@implementation OVSession

+ (void)load {
  orvane::registerQualifiedName(self);
}

+ (void)useSession:(NSURLSession*)session failureMessage:(NSString*)failureMessage {
  [self useSession:session failureMessage:failureMessage encrypted:NO];
}

+ (void)useSession:(NSURLSession*)session failureMessage:(NSString*)failureMessage encrypted:(BOOL)encrypted {
  orvane::Platform platform;
  platform.sharedSession = std::make_shared<orvane::AppleSession>(session);
  if (encrypted) {
    platform.sharedSession = std::make_shared<orvane::ReaddressedSession>(
        std::move(platform.sharedSession), std::string("https://").append(orvane::serviceHost()));
  }
  if (failureMessage)
    platform.failureWords = [words = orvane::utf8(failureMessage)](const orvane::Error&) { return words; };
  orvane::installPlatform(std::move(platform));
}

- (instancetype)init {
  return [super init];
}

@end
