#pragma once

#include <cstddef>
#include <curl/curl.h>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/host/SessionError.h"
#include "adapters/host/Transfer.h"
#include "orvane/host/HostSession.h"

namespace orvane {

/// A handler to call, with its argument.
struct HandlerCall {
  DataTaskHandler handler;
  DataTaskResult result;
};

/// Carries out a session's tasks with libcurl's multi interface. Not thread-safe, except wake().
///
/// Gives curl only the transfers that have a connection to use, since curl slows down with the number of its
/// transfers, and each takes much memory. The other tasks wait here as plain records, in one line: first
/// come, first served, except that a task is passed over while its host has all connections that it may have.
class TransferEngine {
 public:
  explicit TransferEngine(HostSessionConfiguration configuration);
  TransferEngine(const TransferEngine&) = delete;

  /// Takes tasks, and does what can be done now. Returns the calls of the tasks that have finished.
  std::list<HandlerCall> advance(std::vector<DataTask>&& arrived);

  /// Returns when there may be something to do. Call it only while isIdle() is false.
  void wait();
  /// Makes the present wait() return, or the next one. From any thread while isIdle() is false.
  void wake() noexcept { curl_multi_wakeup(multi_.get()); }

  /// Returns true if there are no tasks.
  bool isIdle() const noexcept { return running_.empty() && waiting_.empty(); }

 private:
  struct MultiDeleter {
    void operator()(CURLM* multi) const noexcept { curl_multi_cleanup(multi); }
  };

  void accept(DataTask&& task);
  bool isConnectionFree(const std::string& host) const;
  bool admit(DataTask&& task);
  bool open();
  void settle(Transfer& transfer, CURLcode result);
  void admitNext();
  void follow(DataTask&& task, int statusCode, const std::string& location);
  void fail(DataTask&& task, SessionFailure failure, std::string_view detail = {});

  TransferContext context_;
  std::unique_ptr<CURLM, MultiDeleter> multi_;  // Made for the first transfer.
  std::vector<std::unique_ptr<Transfer>> running_;
  std::vector<std::unique_ptr<Transfer>> idle_;
  std::list<DataTask> waiting_;  // By their deadlines, the earliest first. So the oldest is first.
  std::list<HandlerCall> due_;
};

}  // namespace orvane
