#include "adapters/host/HandlerQueue.h"

namespace orvane {

void HandlerQueue::post(std::vector<HandlerCall>& calls) {
  if (calls.empty()) return;
  bool wasEmpty = false;
  {
    const std::lock_guard lock(mutex_);
    wasEmpty = calls_.empty();
    for (HandlerCall& call : calls) calls_.push_back(std::move(call));
  }
  if (wasEmpty) changed_.notify_one();
  calls.clear();
}

void HandlerQueue::cancelAll() {
  std::deque<HandlerCall> dropped;
  const std::lock_guard lock(mutex_);
  dropped.swap(calls_);
}

void HandlerQueue::close() {
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
  }
  changed_.notify_one();
}

void HandlerQueue::run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return closed_ || !calls_.empty(); });
    if (calls_.empty()) return;
    {
      HandlerCall call = std::move(calls_.front());
      calls_.pop_front();
      lock.unlock();
      call.handler(std::move(call.result));
    }
    lock.lock();
  }
}

}  // namespace orvane
