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
/// in, first out. One thread at a time may run tasks; the other operations may be used from any thread, and
/// from tasks.
class ORVANE_API MainQueue final : public DispatchQueue {
 public:
  void async(Task task) override;

  /// Runs tasks as they come, until stop() is called. A stop() that came before counts.
  void run();
  /// Likewise, for about `limit`: no task begins later, but the first that is due. Whether stop() was called.
  bool run(std::chrono::milliseconds limit);

  /// Runs the tasks that wait now, and returns how many there were.
  std::size_t runPending();

  /// Lets the present or the next run() return, after the task that is being run.
  void stop();

 private:
  bool runUntil(const std::chrono::steady_clock::time_point* limit);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Task> tasks_;
  bool stopped_ = false;
};

}  // namespace orvane
