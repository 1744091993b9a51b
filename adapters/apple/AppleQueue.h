#pragma once

#include <dispatch/dispatch.h>

#include "orvane/platform/DispatchQueue.h"

namespace orvane {

/// One of the system's own queues, which live for ever.
class AppleQueue final : public DispatchQueue {
 public:
  explicit AppleQueue(dispatch_queue_t queue) : queue_(queue) {}

  void async(Task task) override;

  /// By a group of the system's, where `notified` is one of its queues, too.
  void asyncGroup(Task task, std::shared_ptr<DispatchQueue> notified, Task notification) override;

 private:
  dispatch_queue_t queue_;
};

}  // namespace orvane
