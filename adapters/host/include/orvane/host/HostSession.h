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
  /// The host name in the URL, in upper or lower case. Empty: any host.
  std::string host;
  /// The port in the URL, or the default port of its scheme. Default: 80. Set it to 443 for `https`.
  std::uint16_t port = 80;
  /// The host to connect to: a name, an IPv4 address, or an IPv6 address. Empty: the host in the URL.
  std::string toHost;
  /// The port to connect to. Default: 80.
  std::uint16_t toPort = 80;
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
  /// Limits how long data may stay unacknowledged, or unsent because the peer does not read. The connection
  /// then ends, and its transfer fails with -1005; with -1001 while it connects, with -1200 in a TLS
  /// handshake. Default: 15 s, so that a dead network is reported before `idleTimeout`. Has no effect where
  /// the system lacks TCP_USER_TIMEOUT: Linux has it.
  std::chrono::milliseconds acknowledgementTimeout = std::chrono::seconds(15);
  /// Limits how long a connection may have been idle if a request is to use it. After that a new one is made.
  /// Default: 4 s, since many servers close an idle connection after 5 s, and a router on the way may forget
  /// it without a word: the request would then wait for `idleTimeout`. Counts whole seconds from the reading
  /// of the last reply. Below 2 s, no connection is used again.
  std::chrono::milliseconds keepAlive = std::chrono::seconds(4);
  /// Limits the body of a reply in bytes, before and after decompression. A larger one fails with -1103.
  /// Default: 64 MiB. Lower it if memory is scarce. Limits that cannot be set: 20 redirects, and for a header
  /// 4,000 lines, 100 KiB each and 256 KiB together.
  std::size_t maximumBodySize = 64U << 20;
  /// Limits the connections to one host. Further tasks wait. Default: 6. Raise it for a service that allows
  /// more.
  std::size_t connectionsPerHost = 6;
  /// Limits the connections to all hosts together, including those that are kept alive. Further tasks wait.
  /// Default: 64. Raise it to use many hosts at once; each connection takes a descriptor.
  std::size_t maximumConnections = 64;
  /// The URL of a proxy for all requests. Default: empty, which means none.
  std::string proxy = {};
  /// Other addresses to send requests to. The first whose host and port are those of the request is used,
  /// also after a redirect. Default: none. Set it for a test service or a tunnel.
  std::vector<Reroute> reroutes = {};
  /// The name of a file in PEM format with the certificate authorities to trust for `https`, instead of the
  /// system's, also for a proxy. Read for each new connection. Default: empty, which means the system's.
  std::string certificateAuthorities = {};
};

class SessionThread;

/// Carries out http and https requests on ordinary machines, with HTTP/1.1 and libcurl.
///
/// **One thread** starts with the first task, and ends after the last one once the session is destroyed. It
/// carries out the transfers and calls the handlers, one at a time, in the order in which the tasks finished.
/// A slow handler delays all other tasks of the session. After it the thread reads what has arrived before it
/// checks the idle time-out, so no reply is lost. Only a connection that was being made, or a task beyond
/// `totalTimeout`, may have timed out meanwhile.
///
/// **Cookies** live as long as the session, in memory. All of them are dropped when a transfer leaves more
/// than 300 of them, or more than 256 KiB. The Cookie field of a request and the session's cookies are
/// sent in one line. libcurl limits that line to 8 KiB: it leaves out the request's own field if the
/// session's cookies for the host fill the line.
///
/// **Limits.** The URL and the header fields of a request take at most 256 KiB. A compressed body ends where
/// its stream ends. A stream that is cut short is not an error. Host names beyond ASCII need a UTF-8 locale.
/// If the system has no descriptor to give, tasks fail with -1004, or with -1003 while a name is looked up.
/// If it has no memory to give, the constructor and startDataTask throw std::bad_alloc, and the session's
/// thread stops the process. A proxy that answers CONNECT with a refusal that never ends delays all tasks for
/// up to `idleTimeout`.
///
/// **The environment.** Proxies in it are ignored. libcurl appends the keys of its TLS connections to the
/// file named by SSLKEYLOGFILE, and OpenSSL reads its own variables, such as OPENSSL_CONF.
///
/// **The end of the process** waits for threads inside libcurl, and for session threads that are ending, for
/// at most three seconds, and up to half a second for a running handler. No handler begins after that.
/// Until then the statics that were made before the process's first session exist; others may not. The shared
/// library is never unloaded. A shared library that contains the static one must not be unloaded once a
/// session has had a task.
///
/// **Child processes.** A handler runs with the signal mask of the thread that started the first task, with
/// SIGPIPE blocked in addition. A child that the handler starts inherits that mask. At all other times the
/// session's thread takes no signals. A program that is started inherits no descriptor, with one exception:
/// with libcurl before 8.8 it may inherit two for each session, and two for each host name that is being
/// looked up. These carry no data. A child made by fork() must not use a session, and must end by _exit().
///
/// **Errors.** A status is never an error. Errors have the domain "NSURLErrorDomain" and its codes. Their
/// user information has one sentence for people under "NSLocalizedDescription", the URL under
/// "NSErrorFailingURLStringKey", and libcurl's own words, if it has any, under "NSDebugDescription".
class ORVANE_API HostSession final : public URLSession {
 public:
  /// Makes a session without a thread, which starts with the first task.
  explicit HostSession(HostSessionConfiguration configuration = {});
  /// Returns at once. Tasks that were started go on and call their handlers. A handler may destroy its own
  /// session.
  ~HostSession() override;

  /// Throws std::system_error, and starts nothing, if the session has no thread yet and the system has none
  /// to give.
  void startDataTask(URLRequest request, DataTaskHandler handler) override;
  void cancelAllOperations() override;

  /// Waits until no task is left. A task is left until its handler has returned, or was dropped by
  /// cancelAllOperations(). Returns true then, or false after `limit`. Call it before the program ends, so
  /// that its last requests are sent. The session must outlive the call. Must not be called by a handler of
  /// the session, whose own task is left.
  bool waitUntilIdle(std::chrono::milliseconds limit);

 private:
  std::shared_ptr<SessionThread> thread_;
};

}  // namespace orvane
