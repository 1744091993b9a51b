#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>

#include "orvane/base/Export.h"
#include "orvane/platform/DispatchQueue.h"

namespace orvane {

/// A main queue for a program without an event loop: tasks wait until the program runs them. Serial, first
/// in, first out. Only one thread at a time may be inside run() or runPending(). The other operations may be
/// used from any thread, and from tasks. An exception that leaves a task also leaves run() or runPending().
/// The tasks after it wait for the next run.
class ORVANE_API MainQueue final : public DispatchQueue {
 public:
  void async(Task task) override;

  /// Runs tasks as they come, until stop() is called. Returns at once if stop() was called before.
  void run();
  /// Like run(), but returns after about `limit`. Runs at least one task if one is waiting. Returns true if
  /// stop() ended it. A negative `limit` counts as 0, one above ten years as ten years.
  bool run(std::chrono::milliseconds limit);

  /// Runs the tasks that are waiting now, and returns their number. Tasks that are added meanwhile wait for
  /// the next run.
  std::size_t runPending();

  /// Ends the run() that is in progress, after its current task. If none is, the next run() returns at once.
  void stop();

 private:
  void runFirst(std::unique_lock<std::mutex>& lock);
  bool runUntil(const std::chrono::steady_clock::time_point* limit);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Task> tasks_;
  bool stopped_ = false;
};

}  // namespace orvane
