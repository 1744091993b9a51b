#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

#include "tools/devservice/HTTPReply.h"
#include "tools/devservice/HTTPRequest.h"

namespace devservice {
/// A request and its reply, as the log shows them. Texts are cut to what the log keeps.
struct LogEntry {
  std::uint64_t id;  ///< Counted from 1.
  std::chrono::system_clock::time_point time;
  /// From the request to the end of the reply, or of what came instead.
  std::optional<std::chrono::milliseconds> duration;
  std::string method;
  std::string path;
  std::string mobile;   ///< Empty where the request has none.
  std::string members;  ///< Those of the body as JSON, secrets masked; empty where it is no object.
  bool hasClientId;
  int status;
  std::string body;        ///< Of the reply, or its size.
  std::string_view fault;  ///< What was done to the connection.
};

/// The last requests. For one thread at a time.
class RequestLog {
 public:
  /// Adds what is about to be sent, and forgets the oldest entry where there are too many. Valid until the next
  /// call.
  const LogEntry& add(const HTTPRequest& request, const HTTPReply& reply);

  /// Sets the duration of the entry, if it is still there.
  void finish(std::uint64_t id, std::chrono::steady_clock::duration duration);

  void clear() { entries_.clear(); }

  /// The oldest comes first.
  const std::deque<LogEntry>& entries() const { return entries_; }

 private:
  std::deque<LogEntry> entries_;
  std::uint64_t count_ = 0;
};

}  // namespace devservice
