#include "orvane/platform/PostingQueue.h"

namespace orvane {

void PostingQueue::async(Work work) {
  {
    const std::lock_guard lock(mutex_);
    if (closed_) return;
    ++posting_;
  }
  // Not under the lock: the loop may destroy the work inside this call, and its captures may queue more.
  post_(std::move(work));
  const std::lock_guard lock(mutex_);
  if (--posting_ == 0) posted_.notify_all();
}

void PostingQueue::close() {
  std::unique_lock lock(mutex_);
  closed_ = true;
  posted_.wait(lock, [this] { return posting_ == 0; });
}

}  // namespace orvane
