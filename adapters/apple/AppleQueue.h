#pragma once

#include <dispatch/dispatch.h>

#include "orvane/platform/DispatchQueue.h"

namespace orvane {

/// A queue of libdispatch's that lives until the process ends: the main queue or the global one.
class AppleQueue final : public DispatchQueue {
 public:
  explicit AppleQueue(dispatch_queue_t queue) : queue_(queue) {}

  void async(Task task) override;

  /// Uses a dispatch group if `notified` is a queue of libdispatch's, too.
  void asyncGroup(Task task, std::shared_ptr<DispatchQueue> notified, Task notification) override;

 private:
  dispatch_queue_t queue_;
};

}  // namespace orvane
