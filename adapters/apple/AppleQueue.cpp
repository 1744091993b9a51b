#include "adapters/apple/AppleQueue.h"

#include <dispatch/dispatch.h>

namespace orvane {
namespace {

void* keep(Work work) {
  return std::make_unique<Work>(std::move(work)).release();
}

void runKept(void* work) {
  const std::unique_ptr<const Work> owned(static_cast<Work*>(work));
  (*owned)();
}

class AppleQueue final : public DispatchQueue {
 public:
  explicit AppleQueue(dispatch_queue_t queue) : queue_(queue) {}

  void async(Work work) override { dispatch_async_f(queue_, keep(std::move(work)), runKept); }
  void asyncGroup(Work work, std::shared_ptr<DispatchQueue> notified, Work notification) override;

 private:
  dispatch_queue_t queue_;
};

void AppleQueue::asyncGroup(Work work, std::shared_ptr<DispatchQueue> notified, Work notification) {
  const auto* theirs = dynamic_cast<const AppleQueue*>(notified.get());
  if (!theirs) {
    DispatchQueue::asyncGroup(std::move(work), std::move(notified), std::move(notification));
    return;
  }
  const dispatch_group_t group = dispatch_group_create();
  dispatch_group_async_f(group, queue_, keep(std::move(work)), runKept);
  dispatch_group_notify_f(group, theirs->queue_, keep(std::move(notification)), runKept);
  dispatch_release(group);
}

}  // namespace

std::shared_ptr<DispatchQueue> appleMainQueue() {
  return std::make_shared<AppleQueue>(dispatch_get_main_queue());
}

std::shared_ptr<DispatchQueue> appleGlobalQueue() {
  return std::make_shared<AppleQueue>(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0));
}

}  // namespace orvane
