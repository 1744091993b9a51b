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

  /// Queues `task` as a group of its own: after it has run, `notification` is queued on `notified`. Promised
  /// for NetworkTool::demoGCDGroup(), its one caller.
  virtual void asyncGroup(Task task, std::shared_ptr<DispatchQueue> notified, Task notification);
};

}  // namespace orvane
