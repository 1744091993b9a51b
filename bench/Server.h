#pragma once

#include <cstddef>
#include <cstdint>
#include <sys/types.h>

namespace orvane::bench {

/// The service as fast as it can be: fixed replies over connections that are kept alive, by an epoll loop in
/// a process of its own, on the last processor. Make it before the first thread, because it forks. It ends
/// when this process does.
///
/// Also keeps all processors from falling asleep. On a virtual machine the time it takes to wake them would
/// be most of what a call takes.
class Server {
 public:
  Server();

  std::uint16_t port() const noexcept { return port_; }

  /// Makes all later calls wait for ever.
  void freeze() const;

 private:
  std::uint16_t port_ = 0;
  pid_t process_ = 0;
};

/// Keeps the calling thread, and the threads it starts from now on, on that processor. A client that shares
/// the server's processor is woken at much less cost, so without this figures differ several times over from
/// run to run.
void pinTo(std::size_t processor);

/// Returns a socket that listens on loopback, and sets `port`.
int listenOnLoopback(std::uint16_t& port);

}  // namespace orvane::bench
