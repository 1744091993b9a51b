#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

#include "orvane/platform/URLSession.h"

namespace orvane {

/// A handler that is due, and what it will be called with.
struct HandlerCall {
  DataTaskHandler handler;
  DataTaskResult result;
};

/// Calls handlers one after another, in the order they come, on the thread that is in run().
class HandlerQueue {
 public:
  /// Takes all of `calls` with one wake-up, and leaves it empty.
  void post(std::vector<HandlerCall>& calls);

  /// Drops the handlers that have not started.
  void cancelAll();

  /// Lets run() return once no handler waits.
  void close();

  void run();

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<HandlerCall> calls_;
  bool closed_ = false;
};

}  // namespace orvane
