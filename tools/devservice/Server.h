#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Limits.h"

namespace devservice {

/// Serves an IdentityService, and the page to look at it, over HTTP on 127.0.0.1, from its construction to
/// its destruction, on one thread of its own.
class Server {
 public:
  /// Takes one line, without its end, for each request but those the page makes, before the reply is sent. It
  /// is called on the server's thread. Control characters in it are escaped.
  using Log = std::function<void(std::string_view line)>;

  /// Binds the port, or any free one if it is 0, and starts to serve. The service has to outlive the server.
  /// Throws std::runtime_error when the port cannot be bound.
  explicit Server(IdentityService& service, std::uint16_t port = 0, Log log = {}, ServerLimits limits = {});

  /// Ends all connections, those in the middle of a call too, and returns when nothing is served any more.
  ~Server();

  std::uint16_t port() const;

 private:
  class Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace devservice
