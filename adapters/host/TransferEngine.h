#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/host/CurlMulti.h"
#include "adapters/host/SessionError.h"
#include "adapters/host/Transfer.h"
#include "orvane/host/HostSession.h"

namespace orvane {

/// A handler to call, with its argument.
struct HandlerCall {
  DataTaskHandler handler;
  DataTaskResult result;
};

/// Carries out a session's tasks. Not thread-safe, except wake().
///
/// Gives curl only the transfers that have a connection to use, since curl slows down with the number of its
/// transfers, and each takes much memory. The other tasks wait here as plain records. Destinations take turns
/// at the connections.
class TransferEngine {
 public:
  explicit TransferEngine(HostSessionConfiguration configuration);
  TransferEngine(const TransferEngine&) = delete;
  TransferEngine& operator=(const TransferEngine&) = delete;

  void accept(DataTask&& task);

  /// Does what can be done now, and puts the calls of finished tasks into `due`, which is empty before.
  /// Returns true if there is more to do at once.
  bool advance(std::vector<HandlerCall>& due);

  /// Returns true if a socket is ready.
  bool isReady() { return multi_->wait(context_.now); }
  /// Returns when there may be something to do.
  void wait();
  /// Makes the present wait() return, or the next one. From any thread.
  void wake() noexcept { multi_->wake(); }

  bool isIdle() const noexcept { return running_.empty() && waiting_ == 0; }

  /// Releases all that is curl's, when there are no tasks any more. Separate from the destructor, which may
  /// run on a thread that must not block.
  void close();

 private:
  struct IsDueEarlier {
    bool operator()(const DataTask& a, const DataTask& b) const noexcept { return a.deadline < b.deadline; }
  };

  /// The tasks for one scheme, host and port.
  struct Destination {
    std::size_t running = 0;
    std::multiset<DataTask, IsDueEarlier> waiting;
    bool isInTurn = false;  // In `turns_`.
    Clock::time_point turnEnd;
  };
  using Destinations = std::map<std::string, Destination, std::less<>>;

  struct Running {
    std::unique_ptr<Transfer> transfer;
    Destinations::iterator destination;
  };

  bool isConnectionFree() const noexcept;
  void queueUp(Destinations::iterator place);
  DataTask takeWaiting(Destination& destination);
  void giveTurns();
  void admit(Destinations::iterator place);
  void giveUpOverdue();
  void settle(Transfer& transfer, CURLcode result);
  Destinations::iterator release(const Transfer& transfer);
  void follow(DataTask&& task, int statusCode, const std::string& location);
  void report(DataTask&& task, DataTaskResult result);
  void fail(DataTask&& task, SessionErrorCode code, std::string_view detail = {});

  TransferContext context_;
  std::optional<CurlMulti> multi_;

  Destinations destinations_;
  std::deque<Destinations::iterator> turns_;  // Those that can use a connection; the next one first.
  std::size_t waiting_ = 0;                   // Tasks for all destinations.
  Clock::time_point nextDeadline_ = Clock::time_point::max();  // Of a waiting task, or earlier.
  std::vector<Running> running_;
  std::vector<std::unique_ptr<Transfer>> idle_;  // The one used last is last.
  std::size_t leastIdle_ = 0;                    // The fewest since `released_` was 0.
  std::size_t released_ = 0;
  std::vector<HandlerCall> due_;
};

}  // namespace orvane
