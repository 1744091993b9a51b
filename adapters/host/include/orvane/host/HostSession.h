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
  /// The greatest reply body in bytes, before and after decompression; beyond it error -1103. A reply may
  /// also have 4,000 header lines, of 100 KiB each and 256 KiB together.
  std::size_t maximumBodySize = 64U << 20;
  /// How many connections to one host at a time; further requests wait. At least one.
  std::size_t connectionsPerHost = 6;
  /// How many connections to all hosts together, in use and kept alive; further requests wait, and hosts take
  /// turns. At least one.
  std::size_t maximumConnections = 64;
  /// A proxy's URL; empty for none. The environment is not read.
  std::string proxy = {};
  /// The first that fits a request, a redirected one too, is followed.
  std::vector<Reroute> reroutes = {};
  /// A file in PEM format with the certificate authorities to trust for `https` in place of the system's;
  /// empty for the system's. Read with each new connection.
  std::string certificateAuthorities = {};
};

class SessionThreads;

/// HTTP on ordinary machines, by libcurl. Carries out requests with the schemes http and https on two threads
/// of its own, which start with the first task, and calls handlers on either, one at a time.
///
/// Cookies and kept-alive connections live as long as the session; nothing is stored. After a transfer there
/// are at most 300 cookies, 256 KiB together: beyond that all are dropped. A request's own Cookie field and
/// they share one line.
///
/// A compressed body is handed over as far as its stream goes: a stream without its end is not noticed. Host
/// names beyond ASCII need a UTF-8 locale. Where the system gives one thread alone, a slow handler delays
/// transfers; where it gives none, starting a task throws std::system_error. Where it gives no descriptor,
/// tasks fail with -1004.
///
/// **The end of the process** waits for threads inside libcurl, for at most three seconds, and up to half a
/// second for a running handler. No handler begins after that. Statics made before the process's first
/// session still exist until then, others may not. The shared library is never unloaded; do not unload a
/// library that contains the static one once a session has had a task.
///
/// **Child processes.** A handler runs with the signal mask of the thread that started the session's threads,
/// that of the first task, with SIGPIPE blocked in addition; a child that it starts inherits that mask. At
/// all other times these threads take no signals. A started program inherits no descriptor, except that with
/// libcurl before 8.8 it may inherit two for each session, and two for each host name being looked up, which
/// carry no data. A child made by fork() must not use a session, and must end by _exit().
///
/// A status is never an error. Errors have the domain "NSURLErrorDomain" and the codes known from there;
/// their user information has a sentence for people under "NSLocalizedDescription", the same for each error
/// of that code, the URL under "NSErrorFailingURLStringKey", and where libcurl said more, its words under
/// "NSDebugDescription".
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
