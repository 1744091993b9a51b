#import "adapters/apple/AppleDeviceReadings.h"
#import "adapters/apple/AppleQueue.h"
#import "adapters/apple/AppleTextRules.h"
#import "orvane/apple/AppleSession.h"
#include "orvane/platform/makeDefaultPlatform.h"

namespace orvane {

Platform makeDefaultPlatform() {
  @autoreleasepool {
    return {.sharedSession = std::make_shared<AppleSession>([NSURLSession sharedSession]),
            .mainQueue = std::make_shared<AppleQueue>(dispatch_get_main_queue()),
            .globalQueue =
                std::make_shared<AppleQueue>(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0)),
            .textRules = std::make_shared<AppleTextRules>(),
            .deviceReadings = std::make_shared<AppleDeviceReadings>()};
  }
}

}  // namespace orvane
