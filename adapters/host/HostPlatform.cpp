#include <memory>
#include <utility>

#include "adapters/host/HostTextRules.h"
#include "adapters/host/startBackgroundThread.h"
#include "orvane/host/HostDeviceReadings.h"
#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/platform/makeDefaultPlatform.h"

namespace orvane {
namespace {

/// Runs each function on a thread of its own.
class GlobalQueue final : public DispatchQueue {
 public:
  void async(Work work) override {
    startBackgroundThread([work = std::move(work)] {
      const SignalMask signals(startersMask());
      work();
    });
  }
};

const std::shared_ptr<MainQueue>& sharedMainQueue() {
  static const auto* const queue = new std::shared_ptr<MainQueue>(std::make_shared<MainQueue>());
  return *queue;
}

}  // namespace

MainQueue& hostMainQueue() {
  return *sharedMainQueue();
}

Platform makeDefaultPlatform() {
  return {.sharedSession = std::make_shared<HostSession>(),
          .mainQueue = sharedMainQueue(),
          .globalQueue = std::make_shared<GlobalQueue>(),
          .textRules = std::make_shared<HostTextRules>(),
          .deviceReadings = std::make_shared<HostDeviceReadings>()};
}

}  // namespace orvane
