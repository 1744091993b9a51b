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
  bool isTransferring = false;
  bool isWaiting = false;
  {
    const MutexLock lock(mutex_);
    startThreads();
    inbox_.push_back({std::move(request), std::move(handler), Clock::now() + totalTimeout_});
    isTransferring = isTransferring_;
    isWaiting = std::exchange(isWaiting_, false);
  }
  if (!isTransferring) changed_.notify_one();
  if (isWaiting) engine_.wake();
}

/// Starts those that are missing.
void SessionThreads::startThreads() try {
  for (; threads_ < 2; ++threads_) startBackgroundThread([self = shared_from_this()] { self->serve(); });
} catch (const std::system_error&) {
  if (threads_ == 0) throw;
}

void SessionThreads::cancelHandlers() {
  std::deque<HandlerCall> dropped;
  const MutexLock lock(mutex_);
  dropped.swap(calls_);
}

void SessionThreads::close() {
  // In a child made by fork() there are no threads, and the lock may be held.
  if (getpid() != process_) return;
  {
    const MutexLock lock(mutex_);
    isClosed_ = true;
  }
  changed_.notify_one();
}

/// Takes one duty after another, until none can come any more.
void SessionThreads::serve() {
  mutex_.lock();
  for (;;) {
    const bool areCallsDue = !calls_.empty() && !isHandling_;
    const bool areTransfersDue = !isTransferring_ && (!inbox_.empty() || !engine_.isIdle());
    if (areTransfersDue && !(areCallsDue && threads_ == 1)) {
      carryOutTransfers();
    } else if (areCallsDue) {
      callHandlers();
    } else if (isClosed_ && !isTransferring_ && !isHandling_) {
      break;
    } else {
      mutex_.wait(changed_);
    }
  }
  const bool isLast = --threads_ == 0;
  mutex_.unlock();
  changed_.notify_one();  // Wakes the other thread, which nothing else does.
  if (isLast) engine_.close();
  curlGate().enterUntilThreadEnds();
}

/// Returns when there are none, or a lone thread has handlers to call.
void SessionThreads::carryOutTransfers() {
  isTransferring_ = true;
  std::vector<DataTask> arrived;
  std::vector<HandlerCall> due;
  do {
    arrived.swap(inbox_);
    const std::size_t callsLeft = isHandling_ ? 0 : calls_.size();
    mutex_.unlock();
    // One wake-up for many handlers, as long as more are to be expected at once.
    if (callsLeft >= callsAtOnce || (callsLeft > 0 && !engine_.isReady())) changed_.notify_one();
    for (DataTask& task : arrived) engine_.accept(std::move(task));
    arrived.clear();
    const bool isMoreToDo = engine_.advance(due);
    mutex_.lock();
    for (HandlerCall& call : due) calls_.push_back(std::move(call));
    due.clear();
    if (threads_ == 1 && !calls_.empty()) break;
    if (isMoreToDo || !inbox_.empty()) continue;
    isWaiting_ = true;
    const bool areCallsLeft = !calls_.empty() && !isHandling_;
    mutex_.unlock();
    if (areCallsLeft) changed_.notify_one();
    engine_.wait();
    mutex_.lock();
    isWaiting_ = false;
  } while (!engine_.isIdle() || !inbox_.empty());
  isTransferring_ = false;
}

/// Returns when no handler is due.
void SessionThreads::callHandlers() {
  isHandling_ = true;
  while (!calls_.empty()) {
    {
      HandlerCall call = std::move(calls_.front());
      calls_.pop_front();
      mutex_.unlock();
      const ExitGate::Pass pass(handlerGate());
      const SignalMask signals(startersMask());
      std::exchange(call.handler, nullptr)(std::move(call.result));
    }
    mutex_.lock();
  }
  isHandling_ = false;
}

}  // namespace orvane
