#pragma once

#include <functional>
#include <memory>

#include "orvane/base/Export.h"

namespace orvane {

/// A function for a queue to run, once.
using Work = std::function<void()>;

/// A queue that runs functions later. May be used from any thread.
class ORVANE_API DispatchQueue {
 public:
  DispatchQueue() = default;
  DispatchQueue(const DispatchQueue&) = delete;
  DispatchQueue& operator=(const DispatchQueue&) = delete;
  virtual ~DispatchQueue();

  /// Queues `work` and returns. Calls it exactly once, later, and never inside this call.
  virtual void async(Work work) = 0;

  /// Queues `work`, and queues `notification` on `notified` after it has run. This is what the groups of
  /// Apple's queues do, and it exists for NetworkTool::demoGCDGroup() alone, which applications may call.
  virtual void asyncGroup(Work work, std::shared_ptr<DispatchQueue> notified, Work notification);
};

}  // namespace orvane
