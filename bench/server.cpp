// The service as fast as it can be: canned replies over kept-alive connections on loopback, one thread.
//
// bench-server PROCESSOR [hold] [awake]: runs on that processor, prints its port, and ends when its standard
// input ends. With "hold" it takes requests and never replies. With "awake" it keeps all processors from
// falling asleep: on some machines the time it takes to wake them is most of what an exchange takes.

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <netinet/tcp.h>
#include <sched.h>
#include <string>
#include <string_view>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <unordered_map>
#include <vector>

#include "bench/ServiceReplies.h"
#include "bench/process.h"
#include "orvane/client/ServiceCall.h"

namespace orvane::bench {
namespace {

std::string withHead(const std::string& body) {
  return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
         std::to_string(body.size()) + "\r\n\r\n" + body;
}

class Server {
 public:
  explicit Server(bool holds) : holds_(holds) {
    for (std::size_t i = 0; i < pictureCount; ++i)
      pictures_.push_back(withHead(pictureReply(makePicture(usualPicture, i))));
  }

  void run();

 private:
  struct Connection {
    std::string received;
    std::string_view toSend;
  };

  void watch(int file, std::uint32_t events, int operation) const {
    epoll_event event{.events = events, .data = {.fd = file}};
    epoll_ctl(epoll_, operation, file, &event);
  }
  void accept();
  bool serve(int socket, Connection& connection);
  bool flush(int socket, Connection& connection) const;
  std::string_view takeRequest(std::string& received);

  const bool holds_;
  std::vector<std::string> pictures_;
  std::size_t nextPicture_ = 0;
  const std::string tiny_ = withHead(tinyReply());
  const int epoll_ = epoll_create1(EPOLL_CLOEXEC);
  const int listener_ = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  std::unordered_map<int, Connection> connections_;
  std::array<char, 65536> chunk_;
};

void Server::run() {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  auto* const anyAddress = reinterpret_cast<sockaddr*>(&address);
  if (bind(listener_, anyAddress, length) != 0 || listen(listener_, SOMAXCONN) != 0) std::abort();
  getsockname(listener_, anyAddress, &length);
  std::printf("%d\n", ntohs(address.sin_port));
  std::fflush(stdout);

  watch(listener_, EPOLLIN, EPOLL_CTL_ADD);
  watch(STDIN_FILENO, EPOLLIN, EPOLL_CTL_ADD);
  std::array<epoll_event, 64> events;
  for (;;) {
    const int count = epoll_wait(epoll_, events.data(), events.size(), -1);
    for (int i = 0; i < count; ++i) {
      const int file = events[static_cast<std::size_t>(i)].data.fd;
      if (file == STDIN_FILENO) return;
      if (file == listener_) {
        accept();
      } else if (!serve(file, connections_[file])) {
        connections_.erase(file);
        close(file);
      }
    }
  }
}

void Server::accept() {
  const int socket = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
  if (socket < 0) return;
  const int on = 1;
  setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  watch(socket, EPOLLIN, EPOLL_CTL_ADD);
}

/// Returns true if the connection stays open.
bool Server::serve(int socket, Connection& connection) {
  if (!connection.toSend.empty()) return flush(socket, connection);
  const ssize_t count = recv(socket, chunk_.data(), chunk_.size(), 0);
  if (count <= 0) return false;
  connection.received.append(chunk_.data(), static_cast<std::size_t>(count));
  connection.toSend = takeRequest(connection.received);
  return connection.toSend.empty() || flush(socket, connection);
}

/// Sends what the socket takes now; the rest when it takes more.
bool Server::flush(int socket, Connection& connection) const {
  const ssize_t count = send(socket, connection.toSend.data(), connection.toSend.size(), MSG_NOSIGNAL);
  const bool wasWhole = count == std::ssize(connection.toSend);
  if (count > 0) connection.toSend.remove_prefix(static_cast<std::size_t>(count));
  if (!wasWhole) watch(socket, connection.toSend.empty() ? EPOLLIN : EPOLLOUT, EPOLL_CTL_MOD);
  return count > 0;
}

/// Takes a request off `received` and returns the reply, or nothing while the request is incomplete. A client
/// sends no request before it has the reply to the last.
std::string_view Server::takeRequest(std::string& received) {
  constexpr std::string_view lengthField = "\r\nContent-Length: ";
  const std::size_t headEnd = received.find("\r\n\r\n");
  if (headEnd == received.npos) return {};
  std::size_t length = 0;
  if (const std::size_t at = received.find(lengthField); at < headEnd)
    std::from_chars(received.data() + at + lengthField.size(), received.data() + headEnd, length);
  if (received.size() < headEnd + 4 + length) return {};
  const std::size_t path = received.find(' ') + 1;
  const bool isPicture = std::string_view(received).substr(path).starts_with(pictureCodeCall.path);
  received.clear();
  if (holds_) return {};
  return isPicture ? pictures_[nextPicture_++ % pictureCount] : tiny_;
}

/// Gives each processor something to do that makes way for everything else.
void keepProcessorsAwake() {
  for (std::size_t processor = 0; processor < std::thread::hardware_concurrency(); ++processor) {
    std::thread([processor] {
      pinTo(processor);
      const sched_param lowest{};
      if (sched_setscheduler(0, SCHED_IDLE, &lowest) != 0) return;
      for (volatile bool awake = true; awake;) {
      }
    }).detach();
  }
}

}  // namespace
}  // namespace orvane::bench

int main(int count, char** arguments) {
  using namespace orvane::bench;
  const std::vector<std::string_view> flags(arguments + std::min(count, 2), arguments + count);
  const auto has = [&](std::string_view flag) {
    return std::find(flags.begin(), flags.end(), flag) != flags.end();
  };
  if (has("awake")) keepProcessorsAwake();
  pinTo(count > 1 ? static_cast<std::size_t>(std::atoi(arguments[1])) : 0);
  Server(has("hold")).run();
  std::_Exit(0);
}
