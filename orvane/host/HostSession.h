#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "orvane/base/Export.h"
#include "orvane/platform/URLSession.h"

namespace orvane {

/// Sends what is meant for one address to another. The request stays as it is, its Host field too.
struct Reroute {
  std::string host;           ///< The host name in the URL.
  std::uint16_t port = 80;    ///< The port in the URL, or its scheme's.
  std::string toHost;         ///< A name, an IPv4 address, or an IPv6 address without brackets.
  std::uint16_t toPort = 80;  ///< The port there.
};

/// What can be set for a session; each member has the default.
struct HostSessionConfiguration {
  /// How long a transfer may pass without a byte of a body or a whole header line, connecting included; then
  /// error -1001. Must be positive.
  std::chrono::milliseconds idleTimeout = std::chrono::seconds(60);
  /// How long a task may take in all, from its start; then error -1001. Must be positive.
  std::chrono::milliseconds totalTimeout = std::chrono::hours(7 * 24);
  /// The greatest reply body in bytes, before and after decompression; beyond it error -1103. A reply may also
  /// have 4,000 header lines, of 100 KiB each and 256 KiB together.
  std::size_t maximumBodySize = 64U << 20;
  /// How many connections to one host at a time; further requests wait. At least one.
  std::size_t connectionsPerHost = 6;
  /// A proxy's URL; empty for none. The environment is not read.
  std::string proxy = {};
  /// The first that fits a request, a redirected one too, is followed.
  std::vector<Reroute> reroutes = {};
};

class SessionThreads;

/// HTTP on ordinary machines. Requests with the schemes http and https are carried out, on two threads of the
/// session's own, which start with the first task; handlers are called on either, one at a time. Cookies and
/// kept-alive connections live as long as the session, nothing is stored.
///
/// A compressed body is handed over as far as its stream goes: a stream without its end is not noticed. Host names beyond
/// ASCII need a UTF-8 locale. Starting a task throws std::system_error where the system has no thread to give.
///
/// The end of the process waits for whoever is in curl, and up to half a second for a handler under way; from then on no
/// handler begins. Statics made before the process's first session are still there until then, others may not be. A child
/// made by fork() uses no session, and ends by _exit(). A program started meanwhile inherits no descriptor,
/// but for two of curl's, without data, while a host name is being looked up, or while a session is being made.
///
/// A status is never an error. Errors have the domain "NSURLErrorDomain" and the codes known from there; their user
/// information has a sentence for people under "NSLocalizedDescription", the same for each error of that code, the URL
/// under "NSErrorFailingURLStringKey", and where libcurl said more, its words under "NSDebugDescription".
class ORVANE_API HostSession final : public URLSession {
 public:
  /// A session that has not started anything yet.
  explicit HostSession(HostSessionConfiguration configuration = {});
  /// Returns at once. Tasks under way go on and call their handlers.
  ~HostSession() override;

  void startDataTask(URLRequest request, DataTaskHandler handler) override;
  void cancelAllOperations() override;

 private:
  std::shared_ptr<SessionThreads> threads_;
};

}  // namespace orvane
