#include <mutex>

#import "adapters/apple/AppleDeviceReadings.h"
#import "adapters/apple/AppleQueue.h"
#import "adapters/apple/AppleTextRules.h"
#include "adapters/apple/defaultPlatform.h"
#import "orvane/apple/AppleSession.h"
#include "orvane/platform/makeDefaultPlatform.h"

namespace orvane {
namespace {

struct Defaults {
  std::mutex mutex;
  bool areTaken = false;
  std::shared_ptr<URLSession> session;
  std::function<std::string(const Error& cause)> failureWords;
};

Defaults& defaults() {
  static auto* const instance = new Defaults;
  return *instance;
}

}  // namespace

bool setDefaults(std::shared_ptr<URLSession> session,
                 std::function<std::string(const Error& cause)> failureWords) {
  const std::lock_guard lock(defaults().mutex);
  if (defaults().areTaken) return false;
  defaults().session = std::move(session);
  defaults().failureWords = std::move(failureWords);
  return true;
}

Platform makeDefaultPlatform() {
  @autoreleasepool {
    const std::lock_guard lock(defaults().mutex);
    defaults().areTaken = true;
    if (!defaults().session)
      defaults().session = std::make_shared<AppleSession>([NSURLSession sharedSession]);
    return {.sharedSession = defaults().session,
            .mainQueue = appleMainQueue(),
            .globalQueue = appleGlobalQueue(),
            .textRules = std::make_shared<AppleTextRules>(),
            .deviceReadings = std::make_shared<AppleDeviceReadings>(),
            .failureWords = defaults().failureWords};
  }
}

}  // namespace orvane
