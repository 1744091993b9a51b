#include "tools/devservice/Server.h"

#include <arpa/inet.h>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <httplib.h>
#include <map>
#include <mutex>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace devservice {
namespace {

constexpr std::chrono::milliseconds faultDelay{1500};
constexpr std::chrono::seconds idleTimeout{60};
constexpr std::size_t maxConnections = 32;  // served at once; more wait for their turn
constexpr std::size_t longestLoggedBody = 200;
// By TransportFault.
constexpr std::string_view faultNotes[] = {"", ", delayed", ", dropped", ", cut", ", reset"};

std::string escaped(std::string_view text) {
  constexpr char digits[] = "0123456789abcdef";
  std::string result;
  for (const char c : text) {
    if (c >= ' ' && c <= '~') {
      result += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      result.append("\\x").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
    }
  }
  return result;
}

/// One connection: reads ahead, and holds back what is written until the reply is complete, so that a reply
/// leaves in one piece, or spoiled as its fault says.
class Connection : public httplib::Stream {
 public:
  explicit Connection(int descriptor) : descriptor_(descriptor) {}
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() override { close(descriptor_); }

  /// The fault of the reply that is being written.
  void setFault(TransportFault fault) { fault_ = fault; }
  TransportFault fault() const { return fault_; }

  /// Takes no request after the reply that is being written.
  void makeLast() { last_ = true; }

  /// Waits for the next request; false when none comes in time.
  bool awaitRequest() {
    pollfd waiting{descriptor_, POLLIN, 0};
    return position_ < input_.size() ||
           poll(&waiting, 1, int(std::chrono::milliseconds(idleTimeout).count())) > 0;
  }

  /// Sends what was written, or does what the fault asks for; false when the connection is of no more use.
  bool finishReply() {
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

  /// Makes every read and write, under way or to come, end at once. The only member to be called from another
  /// thread.
  void abort() { shutdown(descriptor_, SHUT_RDWR); }

  bool is_readable() const override { return true; }
  bool is_writable() const override { return true; }
  socket_t socket() const override { return descriptor_; }

  ssize_t read(char* data, std::size_t size) override {
    if (position_ == input_.size()) {
      if (!flush()) return -1;  // the peer may wait for an interim reply
      input_.resize(16384);
      const ssize_t count = recv(descriptor_, input_.data(), input_.size(), 0);
      input_.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
      position_ = 0;
      if (count <= 0) return count;
    }
    const std::size_t count = input_.copy(data, size, position_);
    position_ += count;
    return static_cast<ssize_t>(count);
  }

  ssize_t write(const char* data, std::size_t size) override {
    output_.append(data, size);
    return static_cast<ssize_t>(size);
  }

  void get_remote_ip_and_port(std::string& ip, int& port) const override {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (getpeername(descriptor_, reinterpret_cast<sockaddr*>(&address), &size) != 0) return;
    std::array<char, INET_ADDRSTRLEN> text{};
    inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size());
    ip = text.data();
    port = ntohs(address.sin_port);
  }
  void get_local_ip_and_port(std::string&, int&) const override {}  // nobody asks

 private:
  bool flush() {
    std::string_view rest = output_;
    while (!rest.empty()) {
      const ssize_t count = send(descriptor_, rest.data(), rest.size(), MSG_NOSIGNAL);
      if (count <= 0) return false;
      rest.remove_prefix(static_cast<std::size_t>(count));
    }
    output_.clear();
    return true;
  }

  const int descriptor_;
  std::string input_;
  std::size_t position_ = 0;  // of the first byte of the input not yet read
  std::string output_;
  TransportFault fault_ = TransportFault::none;
  bool last_ = false;
};

Request requestFrom(const httplib::Request& received) {
  return {received.method,
          received.path,
          {received.headers.begin(), received.headers.end()},
          received.body,
          received.remote_addr};
}

}  // namespace

/// An HTTP server that runs its connections itself, to have a hand in how they end.
class Server::Implementation : private httplib::Server {
 public:
  Implementation(IdentityService& service, std::uint16_t port, Log log)
      : service_(service), log_(std::move(log)) {
    route();
    set_tcp_nodelay(true);
    set_keep_alive_timeout(idleTimeout.count());
    set_keep_alive_max_count(1'000'000);  // announced; there is no limit
    set_payload_max_length(IdentityService::maxBodySize);
    // The library's default would let two servers share a port.
    set_socket_options([](socket_t socket) {
      const int yes = 1;
      setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    new_task_queue = [] { return std::make_unique<httplib::ThreadPool>(maxConnections).release(); };

    const std::string host = "127.0.0.1";
    const int bound = port != 0 ? (bind_to_port(host, port) ? port : -1) : bind_to_any_port(host);
    if (bound <= 0) throw std::runtime_error("cannot listen on " + host + ":" + std::to_string(port));
    port_ = static_cast<std::uint16_t>(bound);
    ::listen(svr_sock_, SOMAXCONN);  // the library's backlog is short
    thread_ = std::thread([this] { listen_after_bind(); });
  }

  /// Takes the listening socket from the library before it wakes it up: unlike its stop(), this works at any
  /// moment.
  ~Implementation() override {
    const socket_t listening = svr_sock_.exchange(INVALID_SOCKET);
    shutdown(listening, SHUT_RDWR);
    {
      const std::lock_guard lock(mutex_);
      stopping_ = true;
      for (const auto& [thread, connection] : connections_) connection->abort();
    }
    stopped_.notify_all();
    thread_.join();
    close(listening);
  }

  std::uint16_t port() const { return port_; }

 private:
  void route() {
    // The library's routes are regular expressions, and to match one recurses over the path. So there are
    // none: the service answers what the library has no route for.
    set_error_handler([this](const httplib::Request& received, httplib::Response& response) {
      const Reply reply =
          response.status == 404 ? service_.answer(requestFrom(received)) : refuse(response.status);
      response.status = reply.status;
      response.set_content(reply.body, reply.contentType);
      current().setFault(reply.fault);
    });
    set_logger([this](const httplib::Request& received, const httplib::Response& response) {
      if (!log_) return;
      const bool brief = response.body.size() <= longestLoggedBody;
      const std::string body = brief ? response.body : std::to_string(response.body.size()) + " bytes";
      const auto note = faultNotes[static_cast<std::size_t>(current().fault())];
      log_(escaped(received.method + " " + received.path + " " + std::to_string(response.status) + " " + body)
               .append(note));
    });
  }

  /// What the library does not understand; where the next request would start is anybody's guess.
  Reply refuse(int status) {
    current().makeLast();
    Reply reply = makeReply(refusal(status == 413 ? Code::tooLarge : Code::malformedRequest));
    reply.status = status;
    return reply;
  }

  bool process_and_close_socket(socket_t socket) override {
    Connection connection(socket);
    if (!enter(connection)) return false;
    while (connection.awaitRequest()) {
      bool closing = false;
      if (!process_request(connection, false, closing, nullptr)) break;
      if (connection.fault() == TransportFault::delay) pause();
      if (!connection.finishReply() || closing) break;
    }
    leave();
    return true;
  }

  bool enter(Connection& connection) {
    const std::lock_guard lock(mutex_);
    if (!stopping_) connections_[std::this_thread::get_id()] = &connection;
    return !stopping_;
  }

  void leave() {
    const std::lock_guard lock(mutex_);
    connections_.erase(std::this_thread::get_id());
  }

  /// The connection of this thread: one thread serves it from its first request to its last.
  Connection& current() {
    const std::lock_guard lock(mutex_);
    return *connections_.at(std::this_thread::get_id());
  }

  void pause() {
    std::unique_lock lock(mutex_);
    stopped_.wait_for(lock, faultDelay, [this] { return stopping_; });
  }

  IdentityService& service_;
  const Log log_;
  std::uint16_t port_ = 0;
  std::mutex mutex_;
  std::condition_variable stopped_;
  bool stopping_ = false;
  std::map<std::thread::id, Connection*> connections_;
  std::thread thread_;
};

Server::Server(IdentityService& service, std::uint16_t port, Log log)
    : implementation_(std::make_unique<Implementation>(service, port, std::move(log))) {}

Server::~Server() = default;

std::uint16_t Server::port() const {
  return implementation_->port();
}

}  // namespace devservice
