#pragma once

#include <functional>
#include <memory>

#include "orvane/base/Export.h"

namespace orvane {

/// Something to be done once.
using Task = std::function<void()>;

/// Runs tasks later. May be used from any thread.
class ORVANE_API DispatchQueue {
 public:
  DispatchQueue() = default;
  DispatchQueue(const DispatchQueue&) = delete;
  DispatchQueue& operator=(const DispatchQueue&) = delete;
  virtual ~DispatchQueue();

  /// Takes a task and returns; the task is called once, later, never inside this call.
  virtual void async(Task task) = 0;

  /// Takes a task that is a group by itself: once it has run, `notification` goes to the queue `notified`.
  virtual void asyncGroup(Task task, std::shared_ptr<DispatchQueue> notified, Task notification);
};

}  // namespace orvane
