#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <unistd.h>
#include <vector>

#include "adapters/host/TransferEngine.h"

namespace orvane {

/// A session's two threads, and their two duties: to carry out the transfers, and to call the handlers, one
/// after another in the order they come. Each duty is one thread's at a time, and either thread takes the one
/// that waits.
///
/// So a thread that has carried out the last transfer under way calls its handler itself, which saves waking
/// another; should the handler take its time, a task that comes meanwhile finds the other thread. Where
/// transfers go on, the other thread calls the handlers.
///
/// Both threads start with the first task, keep this alive, and end once it is closed and nothing is left to
/// do. Where the system gives one alone, it has both duties, and calls handlers between its looks at the
/// transfers.
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
  /// No task comes any more.
  void close();

 private:
  using Lock = std::unique_lock<std::mutex>;

  void startThreads();
  void run();
  void carryOutTransfers(Lock& lock);
  void callHandlers(Lock& lock);

  const std::chrono::milliseconds totalTimeout_;
  TransferEngine engine_;  // The transferring thread's, but for wake().

  const pid_t process_ = getpid();
  std::mutex mutex_;
  std::condition_variable changed_;
  int threads_ = 0;
  std::vector<DataTask> inbox_;
  std::deque<HandlerCall> calls_;
  bool isTransferring_ = false;
  bool isWaiting_ = false;  // In the engine, while transferring.
  bool isHandling_ = false;
  bool isClosed_ = false;
};

}  // namespace orvane
