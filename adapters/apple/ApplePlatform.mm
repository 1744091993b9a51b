#import "adapters/apple/AppleDeviceReadings.h"
#import "adapters/apple/AppleQueue.h"
#import "adapters/apple/AppleTextRules.h"
#import "orvane/apple/AppleSession.h"
#include "orvane/platform/makeDefaultPlatform.h"

namespace orvane {

Platform makeDefaultPlatform() {
  @autoreleasepool {
    return {.sharedSession = std::make_shared<AppleSession>([NSURLSession sharedSession]),
            .mainQueue = appleMainQueue(),
            .globalQueue = appleGlobalQueue(),
            .textRules = std::make_shared<AppleTextRules>(),
            .deviceReadings = std::make_shared<AppleDeviceReadings>()};
  }
}

}  // namespace orvane
