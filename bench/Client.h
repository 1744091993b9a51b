#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace orvane::bench {

/// One way to post by hand, over one connection to loopback that is kept. Sends the header fields of the
/// service's calls, and offers compression as the library does. Those by curl also keep cookies and take the
/// same reroute; the others have neither, and read no compressed reply.
class Client {
 public:
  Client() = default;
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;
  virtual ~Client();

  /// Returns the reply's body, valid until the next call. Throws std::runtime_error if there is no reply.
  virtual const std::string& post(std::string_view path, const std::string& body) = 0;
};

std::unique_ptr<Client> makeCurlEasyClient(std::uint16_t port);
std::unique_ptr<Client> makeHttplibClient(std::uint16_t port);
std::unique_ptr<Client> makeBeastClient(std::uint16_t port);
/// A blocking socket that reads nothing of the reply's head but its length: the floor.
std::unique_ptr<Client> makeSocketClient(std::uint16_t port);
/// Posts by `client` on a thread of its own, which hands each reply to a main queue: what an application does
/// whose main thread must not wait, and what the library does for it.
std::unique_ptr<Client> makeHandingClient(std::unique_ptr<Client> client);

}  // namespace orvane::bench
