#include "orvane/platform/MainQueue.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <deque>
#include <mutex>
#include <utility>

namespace orvane {

void MainQueue::async(Task task) {
  bool wasEmpty = false;
  {
    const std::lock_guard lock(mutex_);
    wasEmpty = tasks_.empty();
    tasks_.push_back(std::move(task));
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

/// Runs the first task without holding the lock. If the task throws, only that task is gone.
void MainQueue::runFirst(std::unique_lock<std::mutex>& lock) {
  {
    const Task task = std::move(tasks_.front());
    tasks_.pop_front();
    lock.unlock();
    task();
  }
  lock.lock();
}

/// Runs tasks. Returns true if stop() ended it, false at the limit.
bool MainQueue::runUntil(const std::chrono::steady_clock::time_point* limit) {
  const auto isDue = [this] { return stopped_ || !tasks_.empty(); };
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
  const std::size_t pending = tasks_.size();
  std::size_t ran = 0;
  for (; ran < pending && !tasks_.empty(); ++ran) runFirst(lock);  // A task may have run others.
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
