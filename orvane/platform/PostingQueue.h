#pragma once

#include <concepts>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "orvane/base/Export.h"
#include "orvane/platform/DispatchQueue.h"

namespace orvane {

/// A main queue for a program with an event loop: hands each task to a function that posts it to that loop.
/// The function is called on the thread that queues the task, and must not run the task itself. Replies may
/// come until the process ends, so close() the queue before its loop is destroyed.
class ORVANE_API PostingQueue final : public DispatchQueue {
 public:
  /// Posts with `post`.
  explicit PostingQueue(std::function<void(Task)> post) : post_(std::move(post)) {}

  /// Posts with a C function that takes a function and its argument, in this order, such as GLib's
  /// g_idle_add_once. Ignores what it returns.
  template <std::invocable<void (*)(void*), void*> Post>
  explicit PostingQueue(Post post)
      : post_([post](Task task) { post(runTask, std::make_unique<Task>(std::move(task)).release()); }) {}

  void async(Task task) override;

  /// Drops all tasks that come later: callbacks are not called any more, and coroutines neither resumed nor
  /// destroyed. Waits for calls of the function that are under way on other threads, so it must not be called
  /// inside one. May be called from any thread.
  void close();

 private:
  static void runTask(void* task) {
    const std::unique_ptr<Task> owned(static_cast<Task*>(task));
    (*owned)();
  }

  const std::function<void(Task)> post_;
  std::mutex mutex_;
  std::condition_variable posted_;
  int posting_ = 0;  // The calls of `post_` that are under way.
  bool closed_ = false;
};

}  // namespace orvane
