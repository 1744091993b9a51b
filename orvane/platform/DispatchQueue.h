#pragma once

#include <functional>
#include <memory>

#include "orvane/base/Export.h"

namespace orvane {

/// A function to be called once.
using Task = std::function<void()>;

/// A queue that runs tasks later. May be used from any thread.
class ORVANE_API DispatchQueue {
 public:
  DispatchQueue() = default;
  DispatchQueue(const DispatchQueue&) = delete;
  DispatchQueue& operator=(const DispatchQueue&) = delete;
  virtual ~DispatchQueue();

  /// Queues `task` and returns. The task is called exactly once, later, and never inside this call.
  virtual void async(Task task) = 0;

  /// Queues `task`, and queues `notification` on `notified` after it has run. This is what the groups of
  /// Apple's queues do, and it exists for NetworkTool::demoGCDGroup() alone, which applications may call.
  virtual void asyncGroup(Task task, std::shared_ptr<DispatchQueue> notified, Task notification);
};

}  // namespace orvane
