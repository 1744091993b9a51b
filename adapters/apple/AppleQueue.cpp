#include "adapters/apple/AppleQueue.h"

#include <dispatch/dispatch.h>

namespace orvane {
namespace {

void* keep(Task task) {
  return std::make_unique<Task>(std::move(task)).release();
}

void runKept(void* task) {
  const std::unique_ptr<const Task> owned(static_cast<Task*>(task));
  (*owned)();
}

class AppleQueue final : public DispatchQueue {
 public:
  explicit AppleQueue(dispatch_queue_t queue) : queue_(queue) {}

  void async(Task task) override { dispatch_async_f(queue_, keep(std::move(task)), runKept); }
  void asyncGroup(Task task, std::shared_ptr<DispatchQueue> notified, Task notification) override;

 private:
  dispatch_queue_t queue_;
};

void AppleQueue::asyncGroup(Task task, std::shared_ptr<DispatchQueue> notified, Task notification) {
  const auto* theirs = dynamic_cast<const AppleQueue*>(notified.get());
  if (!theirs) {
    DispatchQueue::asyncGroup(std::move(task), std::move(notified), std::move(notification));
    return;
  }
  const dispatch_group_t group = dispatch_group_create();
  dispatch_group_async_f(group, queue_, keep(std::move(task)), runKept);
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
