#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace orvane::test {

/// An HTTP server on a free loopback port. A test's script says what it answers, byte for byte.
class LoopbackServer {
 public:
  struct Request {
    std::string head;  ///< Without the empty line at its end.
    std::string body;
    int connection;  ///< Counted from 1.

    bool hasLine(const std::string& line) const {
      return (head + "\r\n").find("\r\n" + line + "\r\n") != head.npos;
    }
  };
  enum class Then { keep, close, reset, hold };
  struct Answer {
    std::string bytes;
    Then then = Then::keep;
    std::string endless = {};           ///< Sent again and again after `bytes`, until the client goes.
    std::chrono::milliseconds pace{0};  ///< The time between one byte and the next; 0 sends all at once.
  };
  /// Called on the server's thread.
  using Script = std::function<Answer(const Request&)>;

  /// Says if requests() returns what was asked; a test with very many requests does without.
  enum class Requests { kept, forgotten };

  explicit LoopbackServer(Script script = {}, Requests requests = Requests::kept);
  ~LoopbackServer();

  std::uint16_t port() const { return port_; }
  std::string url(const std::string& path = "/") const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
  }
  std::vector<Request> requests() const;
  void setScript(Script script);

  /// Sends `bytes` on all held connections, and holds them no longer. Only the script may call it.
  void release(const std::string& bytes);

 private:
  struct Connection {
    int number = 0;
    std::string received;
    bool held = false;
  };

  void run();
  bool sendPaced(int descriptor, const std::string& bytes, std::chrono::milliseconds pace) const;
  bool serve(int descriptor, Connection& connection);

  Script script_;
  const Requests handling_;
  std::uint16_t port_ = 0;
  int listener_;
  int accepted_ = 0;
  std::map<int, Connection> connections_;
  mutable std::mutex mutex_;
  std::vector<Request> requests_;
  std::thread thread_;
};

/// Returns a socket that listens on a free loopback port, and sets `port`.
int listenOnLoopback(std::uint16_t& port);

/// Returns a whole reply with its Content-Length.
std::string reply(const std::string& body, const std::string& headers = "",
                  const std::string& status = "200 OK");

}  // namespace orvane::test
