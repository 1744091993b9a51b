#include "adapters/host/SessionThreads.h"

#include <cstddef>
#include <system_error>
#include <utility>

#include "adapters/host/ExitGate.h"
#include "adapters/host/startBackgroundThread.h"

namespace orvane {
namespace {

/// How many handlers may wait for one wake-up.
constexpr std::size_t callsAtOnce = 16;

}  // namespace

SessionThreads::SessionThreads(HostSessionConfiguration configuration)
    : totalTimeout_(configuration.totalTimeout), engine_(std::move(configuration)) {}

void SessionThreads::start(URLRequest request, DataTaskHandler handler) {
  bool isNobodyTransferring = false;
  bool isWaiting = false;
  {
    const std::lock_guard lock(mutex_);
    startThreads();
    inbox_.push_back({std::move(request), std::move(handler), Clock::now() + totalTimeout_});
    isNobodyTransferring = !isTransferring_;
    isWaiting = std::exchange(isWaiting_, false);
  }
  if (isNobodyTransferring) changed_.notify_one();
  if (isWaiting) engine_.wake();
}

/// Those that are missing.
void SessionThreads::startThreads() try {
  for (; threads_ < 2; ++threads_) startBackgroundThread([self = shared_from_this()] { self->run(); });
} catch (const std::system_error&) {
  if (threads_ == 0) throw;
}

void SessionThreads::cancelHandlers() {
  std::deque<HandlerCall> dropped;
  const std::lock_guard lock(mutex_);
  dropped.swap(calls_);
}

void SessionThreads::close() {
  if (getpid() != process_)
    return;  // In a child made by fork() there are no threads, and the lock may be held.
  {
    const std::lock_guard lock(mutex_);
    isClosed_ = true;
  }
  changed_.notify_one();
}

void SessionThreads::run() {
  Lock lock(mutex_);
  for (;;) {
    const bool areCallsDue = !calls_.empty() && !isHandling_;
    const bool areTransfersDue = !isTransferring_ && (!inbox_.empty() || !engine_.isIdle());
    if (areTransfersDue && !(areCallsDue && threads_ == 1)) {
      carryOutTransfers(lock);
    } else if (areCallsDue) {
      callHandlers(lock);
    } else if (isClosed_ && !isTransferring_ && !isHandling_) {
      break;
    } else {
      changed_.wait(lock);
    }
  }
  const bool isLast = --threads_ == 0;
  lock.unlock();
  changed_.notify_one();  // Wakes the other thread, which nothing else does.
  if (isLast) engine_.letGo();
}

/// Until there are none, or a lone thread has handlers to call.
void SessionThreads::carryOutTransfers(Lock& lock) {
  isTransferring_ = true;
  std::vector<DataTask> arrived;
  std::vector<HandlerCall> due;
  do {
    arrived.swap(inbox_);
    const std::size_t callsLeft = isHandling_ ? 0 : calls_.size();
    lock.unlock();
    // One wake-up for many handlers, as long as more are to be expected at once.
    if (callsLeft >= callsAtOnce || (callsLeft > 0 && !engine_.isReady())) changed_.notify_one();
    for (DataTask& task : arrived) engine_.add(std::move(task));
    arrived.clear();
    const bool isAnyOver = engine_.act(due);
    lock.lock();
    for (HandlerCall& call : due) calls_.push_back(std::move(call));
    due.clear();
    if (threads_ == 1 && !calls_.empty()) break;
    if (isAnyOver || !inbox_.empty()) continue;
    isWaiting_ = true;
    const bool areCallsLeft = !calls_.empty() && !isHandling_;
    lock.unlock();
    if (areCallsLeft) changed_.notify_one();
    engine_.wait();
    lock.lock();
    isWaiting_ = false;
  } while (!engine_.isIdle() || !inbox_.empty());
  isTransferring_ = false;
}

/// Until none waits.
void SessionThreads::callHandlers(Lock& lock) {
  isHandling_ = true;
  while (!calls_.empty()) {
    {
      HandlerCall call = std::move(calls_.front());
      calls_.pop_front();
      lock.unlock();
      const ExitGate::Pass pass(handlerGate());
      const StartersSignals signals;
      std::exchange(call.handler, nullptr)(std::move(call.result));
    }
    lock.lock();
  }
  isHandling_ = false;
}

}  // namespace orvane
