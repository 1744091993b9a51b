#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Limits.h"

namespace devservice {

/// Says which callers a server has.
struct Reach {
  /// The numeric address to listen on. An IPv6 address may be in brackets. 0.0.0.0 means all IPv4 addresses
  /// of the machine, and :: all addresses.
  std::string address = "127.0.0.1";
  /// Opens the page and /inspect to other machines. If it is empty, only this machine sees them.
  std::string token = {};
};

/// Serves an IdentityService and its page over HTTP, from construction to destruction, on one
/// thread of its own.
class Server {
 public:
  /// Receives a line for each request, before the reply is sent, except for those of the page's script.
  /// Called on the server's thread. The line has no line end, and all but printable ASCII is escaped as \xNN.
  using Log = std::function<void(std::string_view line)>;

  /// Binds the port, or a free one if it is 0, and starts to serve: by default this machine alone. `service`
  /// must outlive the server. Throws std::runtime_error if the address or the port cannot be bound.
  explicit Server(IdentityService& service, std::uint16_t port = 0, Log log = {}, ServerLimits limits = {},
                  Reach reach = {});

  /// Closes all connections, even in the middle of a request, and waits for the thread to end.
  ~Server();

  /// Returns the port that was bound.
  std::uint16_t port() const;

  /// Returns the URL by which this machine reaches the server.
  std::string localURL() const;

  /// Returns the URLs by which other machines reach the server now. None if it listens for this one alone.
  std::vector<std::string> foreignURLs() const;

 private:
  class Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace devservice
