// From the start of a process to the first request it sends: row 6.

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <chrono>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/Rounds.h"
#include "bench/ServiceReplies.h"
#include "bench/process.h"

namespace orvane::bench {
namespace {

/// A listening socket on loopback that takes one request at a time.
class Listener {
 public:
  Listener() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const anyAddress = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_, anyAddress, length) != 0 || listen(listener_, 1) != 0)
      throw std::runtime_error("cannot listen");
    getsockname(listener_, anyAddress, &length);
    port_ = std::to_string(ntohs(address.sin_port));
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener() { close(listener_); }

  const std::string& port() const noexcept { return port_; }

  /// Returns when a request's first bytes have come, at `arrived`, and it was replied to.
  std::chrono::steady_clock::time_point takeRequest() const {
    const int socket = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    std::array<char, 4096> bytes;
    if (recv(socket, bytes.data(), bytes.size(), 0) <= 0) throw std::runtime_error("no request");
    const auto arrived = std::chrono::steady_clock::now();
    const std::string body = tinyReply();
    const std::string reply = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) +
                              "\r\nConnection: close\r\n\r\n" + body;
    send(socket, reply.data(), reply.size(), MSG_NOSIGNAL);
    close(socket);
    return arrived;
  }

 private:
  const int listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  std::string port_;
};

double nanosecondsToFirstRequest(const std::string& program, const Listener& listener) {
  std::string path = program;
  std::string port = listener.port();
  const std::array<char*, 3> arguments = {path.data(), port.data(), nullptr};
  pid_t process = -1;
  const auto start = std::chrono::steady_clock::now();
  if (posix_spawn(&process, path.c_str(), nullptr, nullptr, arguments.data(), environ) != 0)
    throw std::runtime_error("cannot start " + program);
  const std::chrono::duration<double, std::nano> taken = listener.takeRequest() - start;
  waitpid(process, nullptr, 0);
  return taken.count();
}

Contestant starter(const std::string& program, const Listener& listener) {
  return {program, [program, &listener] {
            constexpr int times = 20;
            double sum = 0;
            for (int i = 0; i < times; ++i) sum += nanosecondsToFirstRequest(program, listener);
            return sum / times;
          }};
}

}  // namespace
}  // namespace orvane::bench

int main(int, char** arguments) {
  using namespace orvane::bench;
  const Listener listener;
  const std::vector<Figures> figures =
      takeTurns({starter(programBeside(arguments[0], "bench-start-orvane"), listener),
                 starter(programBeside(arguments[0], "bench-start-curl"), listener)});
  compare({"6", "process start to first request"}, figures[0], "bare libcurl program", figures[1],
          {Goal::Form::share, 1.2});
}
