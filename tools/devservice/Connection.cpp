#include "tools/devservice/Connection.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include "tools/devservice/Limits.h"

namespace devservice {

Connection::~Connection() {
  close(descriptor_);
}

bool Connection::awaitRequest(std::chrono::milliseconds limit) {
  head_.clear();
  inHead_ = true;
  if (position_ == input_.size() && !awaitInput(limit)) return false;
  deadline_ = std::chrono::steady_clock::now() + requestLimit_;
  return true;
}

bool Connection::finishReply() {
  switch (std::exchange(fault_, TransportFault::none)) {
    case TransportFault::none:
    case TransportFault::delay:
      return flush() && !last_;
    case TransportFault::drop:
      break;
    case TransportFault::cut: {
      const std::size_t bodyStart = output_.find("\r\n\r\n") + 4;
      output_.resize(bodyStart + (output_.size() - bodyStart) / 2);
      flush();
      break;
    }
    case TransportFault::reset: {
      const linger discard{1, 0};
      setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &discard, sizeof discard);
      break;
    }
  }
  return false;
}

void Connection::abort() {
  shutdown(descriptor_, SHUT_RDWR);
}

ssize_t Connection::read(char* data, std::size_t size) {
  if (position_ == input_.size()) {
    if (!flush()) return -1;  // the peer may wait for an interim reply
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline_ - std::chrono::steady_clock::now());
    if (left.count() <= 0 || !awaitInput(left)) return -1;
    input_.resize(16384);
    const ssize_t count = recv(descriptor_, input_.data(), input_.size(), 0);
    input_.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    position_ = 0;
    if (count <= 0) return count;
  }
  // A head is read byte by byte, so that nothing behind it is taken for a part of it.
  const std::size_t count = input_.copy(data, inHead_ ? std::min<std::size_t>(size, 1) : size, position_);
  position_ += count;
  if (inHead_) {
    if (head_.size() + count > maxHeadSize) return -1;
    head_.append(data, count);
    inHead_ = !head_.ends_with("\n\r\n");
  }
  return static_cast<ssize_t>(count);
}

ssize_t Connection::write(const char* data, std::size_t size) {
  output_.append(data, size);
  return static_cast<ssize_t>(size);
}

void Connection::get_remote_ip_and_port(std::string& ip, int& port) const {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  if (getpeername(descriptor_, reinterpret_cast<sockaddr*>(&address), &size) != 0) return;
  std::array<char, INET_ADDRSTRLEN> text{};
  inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size());
  ip = text.data();
  port = ntohs(address.sin_port);
}

bool Connection::awaitInput(std::chrono::milliseconds limit) const {
  pollfd waiting{descriptor_, POLLIN, 0};
  return poll(&waiting, 1, static_cast<int>(limit.count())) > 0;
}

bool Connection::flush() {
  std::string_view rest = output_;
  while (!rest.empty()) {
    const ssize_t count = send(descriptor_, rest.data(), rest.size(), MSG_NOSIGNAL);
    if (count <= 0) return false;
    rest.remove_prefix(static_cast<std::size_t>(count));
  }
  output_.clear();
  return true;
}

}  // namespace devservice
