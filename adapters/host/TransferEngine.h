#pragma once

#include <curl/curl.h>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

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

/// Carries out a session's tasks. Used by one thread at a time, but for wake().
///
/// curl slows down with the number of transfers it holds, and each takes much memory: so it is only given
/// those which have a connection to use, and the others wait here as plain records.
class TransferEngine {
 public:
  explicit TransferEngine(HostSessionConfiguration configuration);
  TransferEngine(const TransferEngine&) = delete;
  TransferEngine& operator=(const TransferEngine&) = delete;

  void add(DataTask&& task);

  /// Does what can be done now, and puts what is over into `due`, which is empty. Whether anything was over: then there
  /// may be more to do.
  bool act(std::vector<HandlerCall>& due);

  /// Whether there is something to do now.
  bool isReady() { return multi_->wait(now_); }
  /// Returns when there may be something to do.
  void wait();
  /// Lets the present wait() return, or the next one.
  void wake() noexcept { multi_->wake(); }

  bool isIdle() const noexcept;

  /// Lets go of curl, for good. Here and not in the destructor, which may run on a thread that must not wait for ever.
  void letGo();

 private:
  struct ShareDeleter {
    void operator()(CURLSH* share) const noexcept { curl_share_cleanup(share); }
  };

  /// The tasks for one scheme, host and port.
  struct Destination {
    std::size_t running = 0;
    std::deque<DataTask> waiting;  // By deadline, the earliest first.
  };
  using Destinations = std::map<std::string, Destination, std::less<>>;

  struct Running {
    std::unique_ptr<Transfer> transfer;
    Destinations::iterator destination;
  };

  void admitWaiting();
  void giveUpOverdue();
  void finish(Transfer& transfer, CURLcode result);
  void release(const Transfer& transfer);
  void follow(DataTask&& task, int statusCode, const std::string& location);
  void report(DataTask&& task, DataTaskResult result);
  void fail(DataTask&& task, SessionErrorCode code);

  std::unique_ptr<CURLSH, ShareDeleter> cookies_;
  TransferSettings settings_;
  std::unique_ptr<Multi> multi_;

  Clock::time_point now_;
  Destinations destinations_;
  std::vector<Running> running_;
  std::vector<std::unique_ptr<Transfer>> idle_;
  std::vector<HandlerCall> due_;
  bool redirectedAny_ = false;  // Since the last look into the waiting ones.
};

}  // namespace orvane
