#pragma once

#include <chrono>
#include <concepts>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

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

/// A main queue for a program with an event loop: hands each task to a function that posts it to that loop.
/// The function is called on the thread that brings the task; it must not run the task itself. It is called as
/// long as replies come, so what it posts to must live until the process ends.
class ORVANE_API PostingQueue final : public DispatchQueue {
 public:
  /// Posts with `post`.
  explicit PostingQueue(std::function<void(Task)> post) : post_(std::move(post)) {}

  /// Posts with a C function that takes a function and its argument, in this order, as GLib's g_idle_add_once
  /// does. What it returns is ignored.
  template <std::invocable<void (*)(void*), void*> Post>
  explicit PostingQueue(Post post)
      : post_([post](Task task) { post(runTask, std::make_unique<Task>(std::move(task)).release()); }) {}

  void async(Task task) override { post_(std::move(task)); }

 private:
  static void runTask(void* task) {
    const std::unique_ptr<Task> owned(static_cast<Task*>(task));
    (*owned)();
  }

  std::function<void(Task)> post_;
};

/// The main queue of the default platform, for the program to run. Lives until the process ends.
ORVANE_API MainQueue& hostMainQueue();

}  // namespace orvane
