#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/devservice/HTTPReply.h"
#include "tools/devservice/HTTPRequest.h"

namespace devservice {

/// A request and its reply, unmasked. Strings longer than maxLogText are cut.
struct LogEntry {
  std::uint64_t id;  ///< Counted from 1.
  std::chrono::system_clock::time_point time;
  /// From the end of the request to the end of the reply, or of the fault in its place. Absent until then.
  std::optional<std::chrono::milliseconds> duration;
  std::string method;
  std::string path;
  std::vector<std::pair<std::string, std::string>> headers;  ///< Of the request.
  std::string mobile;                                        ///< Empty if the request has none.
  std::string members;   ///< Of the request, as JSON. Empty if the body is not an object.
  std::string text;      ///< The request's body if it is not an object.
  std::size_t textSize;  ///< Of the request's body, uncut.
  int status;
  std::string body;  ///< The reply's body, or the size of a long one.
  std::size_t bodySize;
  std::string_view fault;  ///< The fault that hit the connection, or empty.
};

/// Keeps the last maxLogEntries requests. Not thread-safe.
class RequestLog {
 public:
  /// Adds a request whose reply is about to be sent. If the log is full, the entry replaces the oldest. The
  /// result is valid until the next call.
  const LogEntry& add(const HTTPRequest& request, const HTTPReply& reply);

  /// Sets the duration of the entry, if the log still has it.
  void finish(std::uint64_t id, std::chrono::steady_clock::duration duration);

  void clear() { entries_.clear(); }

  /// Returns all entries, the oldest first.
  const std::deque<LogEntry>& entries() const { return entries_; }

 private:
  std::deque<LogEntry> entries_;
  std::uint64_t count_ = 0;
};

}  // namespace devservice
