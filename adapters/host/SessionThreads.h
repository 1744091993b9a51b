#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <unistd.h>
#include <vector>

#include "adapters/host/Mutex.h"
#include "adapters/host/TransferEngine.h"

namespace orvane {

/// A session's two threads, and their two duties: to carry out the transfers, and to call the handlers, one
/// after another in the order they come. One thread at a time has a duty; either thread takes the one that is
/// free.
///
/// | A thread          | while             | holds `mutex_`          | is woken by               |
/// |-------------------|-------------------|-------------------------|---------------------------|
/// | transfers         | `isTransferring_` | not inside the engine   |                           |
/// | waits for sockets | `isWaiting_` also | no                      | a socket, a time, wake()  |
/// | handles           | `isHandling_`     | not inside a handler    |                           |
/// | waits for a duty  |                   | no                      | `changed_`                |
///
/// So a thread that has carried out the last transfer calls its handler itself, which saves waking the other.
/// If the handler takes its time, the other thread carries out a task that comes meanwhile. Where transfers
/// go on, the other thread calls the handlers.
///
/// Both threads start with the first task, keep this object alive, and end once it is closed and nothing is
/// left to do. Where the system gives only one, that one has both duties, and calls handlers between its
/// looks at the transfers.
class SessionThreads : public std::enable_shared_from_this<SessionThreads> {
 public:
  explicit SessionThreads(HostSessionConfiguration configuration);
  SessionThreads(const SessionThreads&) = delete;
  SessionThreads& operator=(const SessionThreads&) = delete;

  // From any thread.
  /// Throws std::system_error if the system gives no thread at all.
  void start(URLRequest request, DataTaskHandler handler);
  /// Drops the handlers that have not started.
  void cancelHandlers();
  /// Says that no task comes any more.
  void close();

 private:
  void startThreads() ORVANE_LOCKING(requires_capability(mutex_));
  void serve();
  void carryOutTransfers() ORVANE_LOCKING(requires_capability(mutex_));
  void callHandlers() ORVANE_LOCKING(requires_capability(mutex_));

  const std::chrono::milliseconds totalTimeout_;
  const pid_t process_ = getpid();
  TransferEngine engine_;  // Except for wake(), only for the thread that transfers.

  Mutex mutex_;
  std::condition_variable changed_;
  int threads_ ORVANE_LOCKING(guarded_by(mutex_)) = 0;
  std::vector<DataTask> inbox_ ORVANE_LOCKING(guarded_by(mutex_));
  std::deque<HandlerCall> calls_ ORVANE_LOCKING(guarded_by(mutex_));
  bool isTransferring_ ORVANE_LOCKING(guarded_by(mutex_)) = false;
  bool isWaiting_ ORVANE_LOCKING(guarded_by(mutex_)) = false;
  bool isHandling_ ORVANE_LOCKING(guarded_by(mutex_)) = false;
  bool isClosed_ ORVANE_LOCKING(guarded_by(mutex_)) = false;
};

}  // namespace orvane
