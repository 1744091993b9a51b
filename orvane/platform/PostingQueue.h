#pragma once

#include <concepts>
#include <functional>
#include <memory>
#include <utility>

#include "orvane/base/Export.h"
#include "orvane/platform/DispatchQueue.h"

namespace orvane {

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

}  // namespace orvane
