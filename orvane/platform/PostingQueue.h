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

/// A main queue for a program with an event loop: hands all work to a function that posts it to that loop.
/// That function is called on the thread that queues the work, and must not run the work itself. Replies may
/// come until the process ends, so close() the queue before its loop is destroyed.
class ORVANE_API PostingQueue final : public DispatchQueue {
 public:
  /// Posts with `post`.
  explicit PostingQueue(std::function<void(Work)> post) : post_(std::move(post)) {}

  /// Posts with a C function that takes a function and its argument, in this order, such as GLib's
  /// g_idle_add_once. Ignores what it returns.
  template <std::invocable<void (*)(void*), void*> Post>
  explicit PostingQueue(Post post)
      : post_([post](Work work) { post(runPosted, std::make_unique<Work>(std::move(work)).release()); }) {}

  void async(Work work) override;

  /// Drops all work that comes later: callbacks are not called any more, and coroutines neither resumed nor
  /// destroyed. Waits for calls of the function that are under way on other threads, so it must not be called
  /// inside one. May be called from any thread.
  void close();

 private:
  static void runPosted(void* work) {
    const std::unique_ptr<Work> owned(static_cast<Work*>(work));
    (*owned)();
  }

  const std::function<void(Work)> post_;
  std::mutex mutex_;
  std::condition_variable posted_;
  int posting_ = 0;  // The calls of `post_` that are under way.
  bool closed_ = false;
};

}  // namespace orvane
