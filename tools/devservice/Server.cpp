#include "tools/devservice/Server.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <httplib.h>
#include <map>
#include <mutex>
#include <semaphore>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include "tools/devservice/Connection.h"
#include "tools/devservice/Page.h"

namespace devservice {
namespace {

constexpr std::chrono::milliseconds faultDelay{1500};
// By TransportFault.
constexpr std::string_view faultNotes[] = {"", "delayed", "dropped", "cut", "reset"};

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

using Fields = decltype(Request::headers);

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r";
  text = text.substr(0, text.find_last_not_of(blanks) + 1);
  return text.substr(std::min(text.find_first_not_of(blanks), text.size()));
}

/// The fields as they came: the library drops those without a value and decodes percent signs in the others.
Fields fieldsOf(std::string_view head) {
  Fields fields;
  head.remove_prefix(head.find('\n') + 1);  // the request line
  for (std::size_t end = head.find('\n'); end != head.npos; end = head.find('\n')) {
    const std::string_view line = head.substr(0, end);
    const std::size_t colon = line.find(':');
    if (colon != line.npos) fields.emplace_back(line.substr(0, colon), trimmed(line.substr(colon + 1)));
    head.remove_prefix(end + 1);
  }
  return fields;
}

std::string lineOf(const LogEntry& entry) {
  std::string line =
      escaped(entry.method + " " + entry.path + " " + std::to_string(entry.status) + " " + entry.body);
  if (!entry.fault.empty()) line.append(", ").append(entry.fault);
  return line;
}

/// Threads for so many connections at once. Taking on one more waits until one of them ends.
class ConnectionThreads : public httplib::TaskQueue {
 public:
  /// The flag is set while one waits.
  ConnectionThreads(std::size_t count, std::atomic<bool>& crowded)
      : pool_(count), free_(static_cast<std::ptrdiff_t>(count)), crowded_(crowded) {}

  void enqueue(std::function<void()> serve) override {
    if (!free_.try_acquire()) {
      crowded_ = true;
      free_.acquire();
      crowded_ = false;
    }
    pool_.enqueue([this, serve = std::move(serve)] {
      serve();
      free_.release();
    });
  }
  void shutdown() override { pool_.shutdown(); }

 private:
  httplib::ThreadPool pool_;
  std::counting_semaphore<> free_;
  std::atomic<bool>& crowded_;
};

Request requestFrom(const httplib::Request& received, std::string_view head) {
  return {received.method, received.path, fieldsOf(head), received.body, received.remote_addr};
}

}  // namespace

/// An HTTP server that runs its connections itself, to have a hand in how they end.
class Server::Implementation : private httplib::Server {
 public:
  Implementation(IdentityService& service, std::uint16_t port, Log log, const ServerLimits& limits)
      : service_(service), log_(std::move(log)), limits_(limits) {
    route();
    set_tcp_nodelay(true);
    set_keep_alive_timeout(limits.idle.count());
    set_keep_alive_max_count(1'000'000);  // announced; there is no limit
    set_payload_max_length(maxBodySize);
    // The library's default would let two servers share a port.
    set_socket_options([](socket_t socket) {
      const int yes = 1;
      setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    new_task_queue = [this] {
      return std::make_unique<ConnectionThreads>(limits_.connections, crowded_).release();
    };

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
          response.status == 404 ? answer(requestFrom(received, current().head())) : refuse(response.status);
      if (!Page::owns(received.path) || reply.status >= 400) log(received, reply);
      response.status = reply.status;
      for (const auto& [name, value] : reply.headers) response.set_header(name, value);
      response.set_content(reply.body, reply.contentType);
      current().setFault(reply.fault);
    });
  }

  void log(const httplib::Request& received, const Reply& reply) {
    const bool brief = reply.body.size() <= maxLogText;
    const std::string body = brief ? reply.body : std::to_string(reply.body.size()) + " bytes";
    const auto note = faultNotes[static_cast<std::size_t>(reply.fault)];
    LogEntry entry{received.method, received.path, reply.status, body, note};
    if (log_) log_(lineOf(entry));
    if (entry.path != "/inspect") page_.record(std::move(entry));  // asked by scripts, not by phones
  }

  Reply answer(const Request& request) {
    return Page::owns(request.path) ? page_.answer(request) : service_.answer(request);
  }

  /// What the library does not understand; where the next request would start is anybody's guess.
  Reply refuse(int status) {
    current().makeLast();
    return makeRefusal(status, status == 413 ? Code::tooLarge : Code::malformedRequest);
  }

  bool process_and_close_socket(socket_t socket) override {
    Connection connection(socket, limits_.request);
    if (!enter(connection)) return false;
    while (awaitRequest(connection)) {
      bool closing = false;
      if (!process_request(connection, false, closing, nullptr)) break;
      if (connection.fault() == TransportFault::delay) pause();
      if (!connection.finishReply() || closing) break;
    }
    leave();
    return true;
  }

  bool awaitRequest(Connection& connection) const {
    constexpr std::chrono::seconds step{1};
    for (std::chrono::seconds idle{0}; idle < (crowded_ ? limits_.idleWhenCrowded : limits_.idle);
         idle += step) {
      if (connection.awaitRequest(step)) return true;
    }
    return false;
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
  Page page_{service_};
  const Log log_;
  const ServerLimits limits_;
  std::uint16_t port_ = 0;
  std::mutex mutex_;
  std::condition_variable stopped_;
  bool stopping_ = false;
  std::atomic<bool> crowded_ = false;  // a connection waits for a thread
  std::map<std::thread::id, Connection*> connections_;
  std::thread thread_;
};

Server::Server(IdentityService& service, std::uint16_t port, Log log, ServerLimits limits)
    : implementation_(std::make_unique<Implementation>(service, port, std::move(log), limits)) {}

Server::~Server() = default;

std::uint16_t Server::port() const {
  return implementation_->port();
}

}  // namespace devservice
