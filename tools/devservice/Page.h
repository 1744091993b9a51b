#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>

#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Message.h"

namespace devservice {

/// A request and its reply, as the log shows them.
struct LogEntry {
  std::string method;
  std::string path;
  int status = 0;
  std::string body;             ///< Of the reply, or its size.
  std::string_view fault = {};  ///< What was done to the connection.
};

/// The page for a developer's browser, and what its script asks for. Safe to use from several threads at
/// once.
class Page {
 public:
  /// The service has to outlive the page.
  explicit Page(IdentityService& service) : service_(service) {}

  /// Whether requests for the path are the page's, not the service's.
  static bool owns(std::string_view path);

  /// The reply to a request for a path it owns.
  Reply answer(const Request& request);

  /// Adds to the log, which forgets the oldest entries.
  void record(LogEntry entry);

 private:
  struct Recorded {
    std::uint64_t id;
    std::int64_t time;  // milliseconds since 1970
    LogEntry entry;
  };

  Reply state() const;
  Reply picture(std::string_view mobile) const;
  Reply chooseFault(const Request& request);

  IdentityService& service_;
  mutable std::mutex mutex_;
  std::deque<Recorded> log_;
  std::uint64_t recorded_ = 0;
};

}  // namespace devservice
