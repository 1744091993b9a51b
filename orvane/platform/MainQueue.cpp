#include "orvane/platform/MainQueue.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <utility>

namespace orvane {

void MainQueue::async(Work work) {
  bool wasEmpty = false;
  {
    const std::lock_guard lock(mutex_);
    wasEmpty = queued_.empty();
    queued_.push_back(std::move(work));
  }
  if (wasEmpty) changed_.notify_one();
}

void MainQueue::run() {
  runUntil(nullptr);
}

bool MainQueue::run(std::chrono::milliseconds limit) {
  constexpr std::chrono::milliseconds longest = std::chrono::years(10);
  const auto end =
      std::chrono::steady_clock::now() + std::clamp(limit, std::chrono::milliseconds(0), longest);
  return runUntil(&end);
}

/// Runs the first function without holding the lock. If it throws, only that function is gone.
void MainQueue::runFirst(std::unique_lock<std::mutex>& lock) {
  {
    const Work work = std::move(queued_.front());
    queued_.pop_front();
    lock.unlock();
    work();
  }
  lock.lock();
}

/// Runs what is queued. Returns true if stop() ended it, false at the limit.
bool MainQueue::runUntil(const std::chrono::steady_clock::time_point* limit) {
  const auto isDue = [this] { return stopped_ || !queued_.empty(); };
  std::unique_lock lock(mutex_);
  do {
    if (!limit) {
      changed_.wait(lock, isDue);
    } else if (!changed_.wait_until(lock, *limit, isDue)) {
      return false;
    }
    if (std::exchange(stopped_, false)) return true;
    runFirst(lock);
  } while (!limit || std::chrono::steady_clock::now() < *limit);
  return std::exchange(stopped_, false);
}

std::size_t MainQueue::runPending() {
  std::unique_lock lock(mutex_);
  const std::size_t pending = queued_.size();
  std::size_t ran = 0;
  for (; ran < pending && !queued_.empty(); ++ran) runFirst(lock);  // One may have run others.
  return ran;
}

void MainQueue::stop() {
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  changed_.notify_one();
}

}  // namespace orvane
