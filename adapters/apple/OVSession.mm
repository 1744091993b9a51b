#import "adapters/apple/Orvane/Orvane.h"
#import "adapters/apple/platformText.h"
#import "adapters/apple/registerQualifiedName.h"
#import "orvane/apple/AppleSession.h"
#include "orvane/client/GuardedSession.h"
#include "orvane/client/serviceBaseURL.h"
#include "orvane/network/HTTPSUpgradeSession.h"
#include "orvane/platform/Platform.h"

@implementation OVSession

+ (void)load {
  orvane::registerQualifiedName(self);
}

+ (void)useSession:(NSURLSession*)session failureMessage:(NSString*)failureMessage {
  [self useSession:session failureMessage:failureMessage encrypted:NO];
}

+ (void)useSession:(NSURLSession*)session failureMessage:(NSString*)failureMessage encrypted:(BOOL)encrypted {
  std::shared_ptr<orvane::URLSession> used = std::make_shared<orvane::AppleSession>(session);
  if (encrypted) {
    const std::vector<std::string> hosts = {std::string(orvane::serviceHost())};
    used = std::make_shared<orvane::HTTPSUpgradeSession>(std::move(used), hosts);
  }
  if (failureMessage)
    used = std::make_shared<orvane::GuardedSession>(std::move(used), orvane::utf8(failureMessage));
  orvane::installPlatform({.sharedSession = std::move(used)});
}

- (instancetype)init {
  return [super init];
}

@end
