#pragma once

#include <curl/curl.h>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/host/HandlerQueue.h"
#include "adapters/host/SessionError.h"
#include "adapters/host/Transfer.h"
#include "orvane/host/HostSession.h"

namespace orvane {

/// Carries out a session's tasks: one multi handle on a thread of its own, and a second thread for the handlers.
/// Both start with the first task. The transfer thread keeps the engine alive until it is closed and its last
/// transfer is over; the handler thread ends when the last handler has returned.
///
/// curl slows down with the number of transfers it holds, and each takes much memory: so it is only given
/// those which have a connection to use, and the others wait here as plain records.
class TransferEngine : public std::enable_shared_from_this<TransferEngine> {
 public:
  explicit TransferEngine(HostSessionConfiguration configuration);
  TransferEngine(const TransferEngine&) = delete;
  TransferEngine& operator=(const TransferEngine&) = delete;

  // From any thread.
  void start(URLRequest request, DataTaskHandler handler);
  void cancelHandlers() { handlers_->cancelAll(); }
  /// No task comes any more.
  void close();

 private:
  struct MultiDeleter {
    void operator()(CURLM* multi) const noexcept { curl_multi_cleanup(multi); }
  };
  struct ShareDeleter {
    void operator()(CURLSH* share) const noexcept { curl_share_cleanup(share); }
  };

  /// The tasks for one scheme, host and port.
  struct Destination {
    std::size_t running = 0;
    std::deque<DataTask> waiting;
  };
  using Destinations = std::map<std::string, Destination, std::less<>>;

  struct Running {
    std::unique_ptr<Transfer> transfer;
    Destinations::iterator destination;
  };

  void startThreads();

  // On the transfer thread.
  void run();
  bool takeInbox();
  enum class Place { back, front };
  void enqueue(DataTask task, Place place);
  void admitWaiting();
  void collectFinished();
  void giveUpOverdue();
  int untilNextEnd() const;
  void finish(Transfer& transfer, CURLcode result);
  void release(const Transfer& transfer);
  void follow(DataTask task, int statusCode, const std::string& location);
  void report(DataTask task, DataTaskResult result);
  void fail(DataTask task, SessionErrorCode code, std::string_view description);

  std::unique_ptr<CURLSH, ShareDeleter> cookies_;
  TransferSettings settings_;
  std::unique_ptr<CURLM, MultiDeleter> multi_;
  const std::shared_ptr<HandlerQueue> handlers_;

  std::mutex mutex_;
  std::vector<DataTask> inbox_;
  bool handlersRun_ = false;
  bool transfersRun_ = false;
  bool closed_ = false;

  Clock::time_point now_;
  Destinations destinations_;
  std::vector<Running> running_;
  std::vector<std::unique_ptr<Transfer>> idle_;
  std::vector<HandlerCall> due_;
  bool redirectedAny_ = false;  // Since the last look into the waiting ones.
};

}  // namespace orvane
