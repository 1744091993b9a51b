#include "orvane/host/HostSession.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <curl/curl.h>
#include <list>
#include <mutex>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "adapters/host/ExitGate.h"
#include "adapters/host/TransferEngine.h"
#include "adapters/host/startBackgroundThread.h"
#include "orvane/base/fatal.h"

namespace orvane {

/// A session's one thread. It carries out the transfers and, in between, calls the handlers of finished
/// tasks, one at a time, in the order in which the tasks finished.
///
/// The thread starts with the first task, keeps this object alive, and ends once the session is closed and no
/// task is left. Public functions may be called from any thread.
class SessionThread : public std::enable_shared_from_this<SessionThread> {
 public:
  explicit SessionThread(HostSessionConfiguration configuration)
      : totalTimeout_(configuration.totalTimeout), engine_(std::in_place, std::move(configuration)) {}

  /// Throws std::system_error if the system has no thread to give.
  void start(URLRequest request, DataTaskHandler handler) {
    // Held to the end: the handler may destroy the session, and with it what is woken here.
    const std::lock_guard lock(mutex_);
    if (!hasThread_) startBackgroundThread([self = shared_from_this()] { self->serve(); });
    hasThread_ = true;
    inbox_.push_back({std::move(request), std::move(handler), Clock::now() + totalTimeout_});
    ++tasks_;
    if (std::exchange(isWaiting_, false)) {
      engine_->wake();
    } else {
      workCame_.notify_one();
    }
  }

  /// Drops the handlers that have not started.
  void cancelHandlers() {
    std::list<HandlerCall> dropped;
    const std::lock_guard lock(mutex_);
    dropped.swap(calls_);
    tasks_ -= dropped.size();
    if (tasks_ == 0) becameIdle_.notify_all();
  }

  /// Returns true once every task has ended and its handler has returned, or false after `limit`.
  bool waitUntilIdle(std::chrono::milliseconds limit) {
    using std::chrono::milliseconds;
    constexpr milliseconds longest = std::chrono::years(10);  // The clock's range has an end.
    const milliseconds time = std::clamp(limit, milliseconds(0), longest);
    std::unique_lock lock(mutex_);
    return becameIdle_.wait_for(lock, time, [this] { return tasks_ == 0; });
  }

  /// Lets the thread end after its last task. No task may be started after this call.
  void close() {
    const std::lock_guard lock(mutex_);
    isClosed_ = true;
    workCame_.notify_one();
  }

 private:
  void serve() try {
    std::unique_lock lock(mutex_);
    for (;;) {
      workCame_.wait(lock, [this] { return !inbox_.empty() || !engine_->isIdle() || isClosed_; });
      if (inbox_.empty() && engine_->isIdle()) break;
      std::vector<DataTask> arrived = std::exchange(inbox_, {});
      lock.unlock();
      std::list<HandlerCall> due = engine_->advance(std::move(arrived));
      lock.lock();
      calls_.swap(due);
      if (!calls_.empty()) {
        callHandlers(lock);
      } else if (inbox_.empty() && !engine_->isIdle()) {
        isWaiting_ = true;
        lock.unlock();
        engine_->wait();
        lock.lock();
        isWaiting_ = false;
      }
    }
    lock.unlock();
    {
      const ExitGate::Pass pass(curlGate());
      engine_.reset();  // Here and not in the destructor, which may run on a thread that must not block.
    }
    curlGate().enterUntilThreadEnds();
  } catch (const std::bad_alloc&) {
    fatal("HostSession: there is not enough memory");
  }

  void callHandlers(std::unique_lock<std::mutex>& lock) {
    while (!calls_.empty()) {
      {
        HandlerCall call = std::move(calls_.front());
        calls_.pop_front();
        lock.unlock();
        const ExitGate::Pass pass(handlerGate());
        const SignalMask signals(startersMask());
        std::exchange(call.handler, nullptr)(std::move(call.result));
      }
      lock.lock();
      --tasks_;
    }
    if (tasks_ == 0) becameIdle_.notify_all();
  }

  const std::chrono::milliseconds totalTimeout_;
  std::optional<TransferEngine> engine_;  // Used by the thread alone, except for wake().

  std::mutex mutex_;  // Guards all that follows.
  std::condition_variable workCame_;
  std::condition_variable becameIdle_;
  std::vector<DataTask> inbox_;
  std::list<HandlerCall> calls_;
  std::size_t tasks_ = 0;  // Those whose handlers have neither returned nor been dropped.
  bool hasThread_ = false;
  bool isWaiting_ = false;  // True while the thread is in TransferEngine::wait().
  bool isClosed_ = false;
};

namespace {

HostSessionConfiguration withinBounds(HostSessionConfiguration configuration) {
  using std::chrono::milliseconds;
  constexpr milliseconds longest = std::chrono::years(10);
  for (milliseconds* time : {&configuration.idleTimeout, &configuration.totalTimeout,
                             &configuration.acknowledgementTimeout, &configuration.keepAlive})
    *time = std::clamp(*time, milliseconds(1), longest);
  for (std::size_t* count : {&configuration.connectionsPerHost, &configuration.maximumConnections})
    *count = std::max<std::size_t>(*count, 1);
  return configuration;
}

/// Initialises curl, once for the process. Registers the gates after curl's libraries have registered their
/// clean-up, so that the gates close before it.
void prepareProcess() {
  static const CURLcode result = [] {
    const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    closeGatesAtExit();
    return initialised;
  }();
  if (result != CURLE_OK) throw std::bad_alloc();
}

}  // namespace

HostSession::HostSession(HostSessionConfiguration configuration) {
  prepareProcess();
  thread_ = std::make_shared<SessionThread>(withinBounds(std::move(configuration)));
}

HostSession::~HostSession() {
  thread_->close();
}

void HostSession::startDataTask(URLRequest request, DataTaskHandler handler) {
  if (!handler) handler = [](const auto&) {};
  thread_->start(std::move(request), std::move(handler));
}

void HostSession::cancelAllOperations() {
  thread_->cancelHandlers();
}

bool HostSession::waitUntilIdle(std::chrono::milliseconds limit) {
  return thread_->waitUntilIdle(limit);
}

}  // namespace orvane
