#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>

#include "orvane/base/Export.h"
#include "orvane/platform/DispatchQueue.h"

namespace orvane {

/// A main queue for a program without an event loop: work waits until the program runs it. Serial, first in,
/// first out. Only one thread at a time may be inside run() or runPending(). The other operations may be used
/// from any thread, and by the work itself. An exception that leaves the work also leaves run() or
/// runPending(). The work after it waits for the next run.
class ORVANE_API MainQueue final : public DispatchQueue {
 public:
  void async(Work work) override;

  /// Runs work as it comes, until stop() is called. Returns at once if stop() was called before.
  void run();
  /// Like run(), but returns after about `limit`. Runs at least one function if one is waiting. Returns true
  /// if stop() ended it. A negative `limit` counts as 0, one above ten years as ten years.
  bool run(std::chrono::milliseconds limit);

  /// Runs the functions that are waiting now, and returns their number. Those that are added meanwhile wait
  /// for the next run.
  std::size_t runPending();

  /// Ends the run() that is in progress, after the function that it is running. If there is none, the next
  /// run() returns at once.
  void stop();

 private:
  void runFirst(std::unique_lock<std::mutex>& lock);
  bool runUntil(const std::chrono::steady_clock::time_point* limit);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Work> queued_;
  bool stopped_ = false;
};

}  // namespace orvane
