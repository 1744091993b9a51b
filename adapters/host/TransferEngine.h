#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/host/CookieJar.h"
#include "adapters/host/Multi.h"
#include "adapters/host/SessionError.h"
#include "adapters/host/Transfer.h"
#include "orvane/host/HostSession.h"

namespace orvane {

/// A handler that is due, and what it will be called with.
struct HandlerCall {
  DataTaskHandler handler;
  DataTaskResult result;
};

/// Carries out a session's tasks. Not thread-safe, except wake().
///
/// curl slows down with the number of transfers it holds, and each takes much memory: so it is only given
/// those which have a connection to use, and the others wait here as plain records. Destinations take turns
/// at the connections.
class TransferEngine {
 public:
  explicit TransferEngine(HostSessionConfiguration configuration);
  TransferEngine(const TransferEngine&) = delete;
  TransferEngine& operator=(const TransferEngine&) = delete;

  void add(DataTask&& task);

  /// Does what can be done now, and puts what is over into `due`, which is empty. Whether anything was over:
  /// then there may be more to do.
  bool act(std::vector<HandlerCall>& due);

  /// Returns true if there is something to do now.
  bool isReady() { return multi_->wait(now_); }
  /// Returns when there may be something to do.
  void wait();
  /// Lets the present wait() return, or the next one.
  void wake() noexcept { multi_->wake(); }

  bool isIdle() const noexcept { return running_.empty() && waiting_ == 0; }

  /// Lets go of curl, for good. Here and not in the destructor, which may run on a thread that must not wait
  /// for ever.
  void letGo();

 private:
  /// The tasks for one scheme, host and port.
  struct Destination {
    std::size_t running = 0;
    std::deque<DataTask> waiting;  // By deadline, the earliest first.
    bool isInTurn = false;         // In `turns_`.
    Clock::time_point turnEnd;
  };
  using Destinations = std::map<std::string, Destination, std::less<>>;

  struct Running {
    std::unique_ptr<Transfer> transfer;
    Destinations::iterator destination;
  };

  void queueUp(Destinations::iterator place);
  void admitWaiting();
  void begin(Destinations::iterator place);
  void giveUpOverdue();
  void finish(Transfer& transfer, CURLcode result);
  Destinations::iterator release(const Transfer& transfer);
  void follow(DataTask&& task, int statusCode, const std::string& location);
  void report(DataTask&& task, DataTaskResult result);
  void fail(DataTask&& task, SessionErrorCode code, std::string_view detail = {});

  const std::unique_ptr<CookieJar> cookies_;
  TransferSettings settings_;
  std::unique_ptr<Multi> multi_;

  Clock::time_point now_;
  Destinations destinations_;
  std::deque<Destinations::iterator> turns_;  // Those that can use a connection, in the order they get one.
  std::size_t waiting_ = 0;                   // Tasks, at all destinations.
  Clock::time_point nextDeadline_ = Clock::time_point::max();  // No task that waits has an earlier one.
  std::vector<Running> running_;
  std::vector<std::unique_ptr<Transfer>> idle_;  // The one used last at the end.
  std::size_t leastIdle_ = 0;                    // How many were never needed since `released_` was 0.
  std::size_t released_ = 0;
  std::vector<HandlerCall> due_;
  bool redirectedAny_ = false;  // Since the last look into the waiting ones.
};

}  // namespace orvane
