#include "tests/support/LoopbackServer.h"

#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace orvane::test {
namespace {

/// Returns false if the client has gone.
bool sendAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t now = ::send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (now <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(now));
  }
  return true;
}

std::size_t contentLength(const std::string& head) {
  const std::size_t at = head.find("\r\nContent-Length: ");
  return at == head.npos ? 0 : std::stoul(head.substr(at + 18));
}

}  // namespace

LoopbackServer::LoopbackServer(Script script, Requests requests)
    : script_(std::move(script)), handling_(requests), listener_(listenOnLoopback(port_)) {
  thread_ = std::thread([this] { run(); });
}

LoopbackServer::~LoopbackServer() {
  ::shutdown(listener_, SHUT_RD);  // Reported by poll() as POLLHUP, which ends run() and sendPaced().
  thread_.join();
  ::close(listener_);
  for (const auto& [descriptor, connection] : connections_) ::close(descriptor);
}

std::vector<LoopbackServer::Request> LoopbackServer::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

void LoopbackServer::setScript(Script script) {
  const std::lock_guard lock(mutex_);
  script_ = std::move(script);
}

void LoopbackServer::release(const std::string& bytes) {
  for (auto& [descriptor, connection] : connections_) {
    if (std::exchange(connection.held, false)) sendAll(descriptor, bytes);
  }
}

void LoopbackServer::run() {
  for (;;) {
    std::vector<pollfd> waited = {{listener_, POLLIN, 0}};
    for (const auto& [descriptor, connection] : connections_) waited.push_back({descriptor, POLLIN, 0});
    ::poll(waited.data(), waited.size(), -1);
    if (waited[0].revents & POLLHUP) return;
    if (waited[0].revents)
      connections_[::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC)].number = ++accepted_;
    for (std::size_t i = 1; i < waited.size(); ++i) {
      const int descriptor = waited[i].fd;
      if (!waited[i].revents || serve(descriptor, connections_.at(descriptor))) continue;
      ::close(descriptor);
      connections_.erase(descriptor);
    }
  }
}

/// Returns false if the client has gone or the server is to stop.
bool LoopbackServer::sendPaced(int descriptor, const std::string& bytes,
                               std::chrono::milliseconds pace) const {
  if (pace.count() == 0) return sendAll(descriptor, bytes);
  for (const char& byte : bytes) {
    pollfd stop = {listener_, 0, 0};
    if (::poll(&stop, 1, static_cast<int>(pace.count())) != 0 || !sendAll(descriptor, {&byte, 1}))
      return false;
  }
  return true;
}

/// Returns true if the connection stays open.
bool LoopbackServer::serve(int descriptor, Connection& connection) {
  char buffer[65536];
  const ssize_t size = ::recv(descriptor, buffer, sizeof(buffer), 0);
  if (size <= 0) return false;
  std::string& received = connection.received;
  received.append(buffer, static_cast<std::size_t>(size));
  const std::size_t headEnd = received.find("\r\n\r\n");
  if (headEnd == received.npos) return true;
  const std::string head = received.substr(0, headEnd);
  const std::size_t length = contentLength(head);
  if (received.size() < headEnd + 4 + length) return true;
  const Request request = {head, received.substr(headEnd + 4, length), connection.number};
  received.erase(0, headEnd + 4 + length);
  Script script;
  {
    const std::lock_guard lock(mutex_);
    if (handling_ == Requests::kept) requests_.push_back(request);
    script = script_;
  }
  connection.held = true;
  const Answer answer = script(request);
  bool isThere = sendPaced(descriptor, answer.bytes, answer.pace);
  while (isThere && !answer.endless.empty()) isThere = sendPaced(descriptor, answer.endless, answer.pace);
  if (answer.then == Then::hold) return true;
  connection.held = false;
  const linger abort = {1, 0};
  if (answer.then == Then::reset) ::setsockopt(descriptor, SOL_SOCKET, SO_LINGER, &abort, sizeof(abort));
  return answer.then == Then::keep;
}

int listenOnLoopback(std::uint16_t& port) {
  const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  socklen_t size = sizeof(address);
  if (::bind(listener, generic, size) != 0 || ::listen(listener, 512) != 0 ||
      ::getsockname(listener, generic, &size) != 0) {
    throw std::runtime_error("no loopback port");
  }
  port = ntohs(address.sin_port);
  return listener;
}

std::string reply(const std::string& body, const std::string& headers, const std::string& status) {
  return "HTTP/1.1 " + status + "\r\n" + headers + "Content-Length: " + std::to_string(body.size()) +
         "\r\n\r\n" + body;
}

}  // namespace orvane::test
