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

/// An HTTP server on a free loopback port that answers as a test's script says, byte for byte.
class LoopbackServer {
 public:
  struct Request {
    std::string head;  ///< To the empty line, exclusive.
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
    std::string endless = {};           ///< Follows again and again, until the client goes.
    std::chrono::milliseconds pace{0};  ///< If not zero: one byte at a time, so far apart.
  };
  /// Called on the server's thread.
  using Script = std::function<Answer(const Request&)>;

  /// What has been asked is kept for requests() unless there is too much of it.
  enum class Requests { kept, forgotten };

  explicit LoopbackServer(Script script = {}, Requests requests = Requests::kept);
  ~LoopbackServer();

  std::uint16_t port() const { return port_; }
  std::string url(const std::string& path = "/") const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
  }
  std::vector<Request> requests() const;
  void setScript(Script script);

  /// Sends `bytes` on all held connections, and keeps holding them unless it is the last. Only called from
  /// the script.
  void release(const std::string& bytes, bool isLast = true);

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
  int listener_;
  int stopPipe_[2];
  std::uint16_t port_ = 0;
  int accepted_ = 0;
  std::map<int, Connection> connections_;
  mutable std::mutex mutex_;
  std::vector<Request> requests_;
  std::thread thread_;
};

/// A whole reply with its Content-Length.
std::string reply(const std::string& body, const std::string& headers = "",
                  const std::string& status = "200 OK");

}  // namespace orvane::test
