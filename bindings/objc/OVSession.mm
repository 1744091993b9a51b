#import "adapters/apple/defaultPlatform.h"
#import "adapters/apple/platformString.h"
#import "orvane/apple/AppleSession.h"
#import "orvane/apple/platformError.h"
#include "orvane/base/fatal.h"
#include "orvane/network/ReaddressedSession.h"

#import "bindings/objc/KeptBlock.h"
#import "bindings/objc/include/Orvane/Orvane.h"
#import "bindings/objc/registerQualifiedName.h"

@implementation OVSession

+ (void)load {
  orvane::registerQualifiedName(self);
}

+ (void)useSession:(NSURLSession*)session
           address:(NSURL*)address
      failureWords:(NSString* (^)(NSError* cause))failureWords {
  std::shared_ptr<orvane::URLSession> used =
      std::make_shared<orvane::AppleSession>(session ? session : [NSURLSession sharedSession]);
  if (address)
    used = std::make_shared<orvane::ReaddressedSession>(used, orvane::utf8([address absoluteString]));
  std::function<std::string(const orvane::Error&)> words;
  if (failureWords) {
    words = [block = orvane::KeptBlock(failureWords)](const orvane::Error& cause) {
      @autoreleasepool {
        const orvane::ErrorPtr unowned(orvane::ErrorPtr(), &cause);
        return orvane::utf8(block(orvane::platformError(unowned)));
      }
    };
  }
  if (!orvane::setDefaults(std::move(used), std::move(words)))
    orvane::fatal("OVSession: the library is in use, so its session cannot be changed");
}

- (instancetype)init {
  return [super init];
}

@end
