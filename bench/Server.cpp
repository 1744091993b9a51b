#include "bench/Server.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sched.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/epoll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <unordered_map>

#include "bench/Service.h"

namespace orvane::bench {
namespace {

std::string withHead(std::string_view body) {
  return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
         std::to_string(body.size()) + "\r\n\r\n" + std::string(body);
}

/// Returns true if `received` is a whole request.
bool isWhole(const std::string& received) {
  constexpr std::string_view lengthField = "\r\nContent-Length: ";
  const std::size_t headEnd = received.find("\r\n\r\n");
  if (headEnd == received.npos) return false;
  const std::size_t at = received.find(lengthField);
  const std::size_t length = at < headEnd ? std::stoul(received.substr(at + lengthField.size())) : 0;
  return received.size() >= headEnd + 4 + length;
}

void watch(int epoll, int file) {
  epoll_event event{.events = EPOLLIN, .data = {.fd = file}};
  epoll_ctl(epoll, EPOLL_CTL_ADD, file, &event);
}

[[noreturn]] void serve(int listener) {
  const std::string tiny = withHead(tinyReply);
  std::vector<std::string> pictures;
  for (const Bytes& picture : makePictures(usualPicture)) pictures.push_back(withHead(pictureReply(picture)));
  std::size_t nextPicture = 0;
  std::unordered_map<int, std::string> connections;  // What each has received of its next request.
  std::array<char, 65536> chunk;
  const int epoll = epoll_create1(EPOLL_CLOEXEC);
  watch(epoll, listener);
  for (;;) {
    epoll_event event{};
    if (epoll_wait(epoll, &event, 1, -1) != 1) continue;
    const int socket = event.data.fd;
    if (socket == listener) {
      const int accepted = accept(listener, nullptr, nullptr);
      const int on = 1;
      setsockopt(accepted, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
      watch(epoll, accepted);
      continue;
    }
    std::string& received = connections[socket];
    const ssize_t count = recv(socket, chunk.data(), chunk.size(), 0);
    received.append(chunk.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (count > 0 && !isWhole(received)) continue;
    const bool isPicture = received.starts_with(std::string("POST ").append(picturePath));
    const std::string& reply = isPicture ? pictures[nextPicture++ % pictures.size()] : tiny;
    received.clear();
    // The socket blocks, so all is sent, or the client is gone.
    if (count > 0 && send(socket, reply.data(), reply.size(), MSG_NOSIGNAL) > 0) continue;
    connections.erase(socket);
    close(socket);
  }
}

/// Gives each processor something to do that makes way for everything else.
void keepProcessorsAwake(std::size_t processors) {
  for (std::size_t processor = 0; processor < processors; ++processor) {
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

Server::Server() {
  const int listener = listenOnLoopback(port_);
  process_ = fork();
  if (process_ < 0) throw std::runtime_error("the server does not start");
  if (process_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const std::size_t processors = std::max(std::thread::hardware_concurrency(), 1U);
    keepProcessorsAwake(processors);
    pinTo(processors - 1);
    serve(listener);
  }
  close(listener);
}

void Server::freeze() const {
  kill(process_, SIGSTOP);
}

void pinTo(std::size_t processor) {
  cpu_set_t processors;
  CPU_ZERO(&processors);
  CPU_SET(processor, &processors);
  if (sched_setaffinity(0, sizeof processors, &processors) != 0) throw std::runtime_error("cannot pin");
}

int listenOnLoopback(std::uint16_t& port) {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  auto* const anyAddress = reinterpret_cast<sockaddr*>(&address);
  if (bind(listener, anyAddress, length) != 0 || listen(listener, SOMAXCONN) != 0)
    throw std::runtime_error("cannot listen");
  getsockname(listener, anyAddress, &length);
  port = ntohs(address.sin_port);
  return listener;
}

}  // namespace orvane::bench
