#include "orvane/platform/Platform.h"

#include <atomic>

#include "orvane/base/fatal.h"
#include "orvane/platform/makeDefaultPlatform.h"

namespace orvane {
namespace {

std::atomic<const Platform*> platformInUse = nullptr;

/// Makes `candidate` the platform until the process ends, its null members replaced by the adapter's. Returns
/// false if a platform is in use already.
bool putInUse(Platform candidate) {
  const Platform defaults = makeDefaultPlatform();
  const auto complete = [&](auto member) {
    if (!(candidate.*member)) candidate.*member = defaults.*member;
  };
  complete(&Platform::sharedSession);
  complete(&Platform::mainQueue);
  complete(&Platform::globalQueue);
  complete(&Platform::textRules);
  complete(&Platform::deviceReadings);
  complete(&Platform::failureWords);

  auto completed = std::make_unique<const Platform>(std::move(candidate));
  const Platform* none = nullptr;
  if (!platformInUse.compare_exchange_strong(none, completed.get())) return false;
  static_cast<void>(completed.release());  // Never destroyed.
  return true;
}

}  // namespace

URLSession::~URLSession() = default;
DispatchQueue::~DispatchQueue() = default;

void DispatchQueue::asyncGroup(Work work, std::shared_ptr<DispatchQueue> notified, Work notification) {
  async([work = std::move(work), notified = std::move(notified),
         notification = std::move(notification)]() mutable {
    work();
    notified->async(std::move(notification));
  });
}

TextRules::~TextRules() = default;
DeviceReadings::~DeviceReadings() = default;

void installPlatform(Platform platform) {
  if (!putInUse(std::move(platform))) fatal("installPlatform: the platform is in use already");
}

const Platform& platform() {
  if (!platformInUse.load()) putInUse({});
  return *platformInUse.load();
}

}  // namespace orvane
