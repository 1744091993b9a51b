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

/// Sends requests for one address to another. The request itself stays the same, including its Host field.
struct Reroute {
  std::string host;           ///< The host name in the URL.
  std::uint16_t port = 80;    ///< The port in the URL, or its scheme's.
  std::string toHost;         ///< A name, an IPv4 address, or an IPv6 address without brackets.
  std::uint16_t toPort = 80;  ///< The port there.
};

/// The settings of a session. A time-out is clamped to the range from 1 ms to 10 years, and a number of
/// connections is at least 1.
struct HostSessionConfiguration {
  /// Limits the time without progress, connecting included. Progress is a byte of a body or a complete header
  /// line. A transfer beyond the limit fails with -1001. Default: 60 s. Lower it to report a dead network
  /// sooner.
  std::chrono::milliseconds idleTimeout = std::chrono::seconds(60);
  /// Limits the time of a task from its start, waiting for a connection and redirects included. A task beyond
  /// the limit fails with -1001. Default: 7 days. Lower it if the reply is of use for a short time only.
  std::chrono::milliseconds totalTimeout = std::chrono::hours(7 * 24);
  /// Limits the body of a reply in bytes, before and after decompression. A larger one fails with -1103.
  /// Default: 64 MiB. Lower it if memory is scarce. Limits that cannot be set: 20 redirects, and for a header
  /// 4,000 lines, 100 KiB each and 256 KiB together.
  std::size_t maximumBodySize = 64U << 20;
  /// Limits the connections to one host. Further tasks wait. Default: 6. Raise it for a service that allows
  /// more.
  std::size_t connectionsPerHost = 6;
  /// Limits the connections to all hosts together, including those that are kept alive. Further tasks wait,
  /// and hosts take turns. Default: 64. Raise it to use many hosts at once; each connection takes a
  /// descriptor.
  std::size_t maximumConnections = 64;
  /// The URL of a proxy for all requests. Default: empty, which means none. The environment is not read.
  std::string proxy = {};
  /// Where to send requests instead. The first that fits a request is used, also after a redirect. Default:
  /// none. Set it for a test service or a tunnel.
  std::vector<Reroute> reroutes = {};
  /// The name of a file in PEM format with the certificate authorities to trust for `https`, instead of the
  /// system's. Read for each new connection. Default: empty, which means the system's.
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
