#include "tools/devservice/Server.h"

#include <algorithm>
#include <boost/asio/as_tuple.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <chrono>
#include <exception>
#include <list>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tools/devservice/Connection.h"
#include "tools/devservice/Router.h"

namespace devservice {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

constexpr auto awaited = asio::as_tuple(asio::use_awaitable);

tcp::acceptor listenOn(asio::io_context& context, std::uint16_t port) {
  const tcp::endpoint endpoint(asio::ip::address_v4::loopback(), port);
  try {
    return {context, endpoint};
  } catch (const boost::system::system_error& error) {
    throw std::runtime_error("cannot listen on 127.0.0.1:" + std::to_string(port) + ": " +
                             error.code().message());
  }
}

}  // namespace

/// Each connection is a coroutine; all run on one thread.
class Server::Implementation {
 public:
  Implementation(IdentityService& service, std::uint16_t port, Log log, const ServerLimits& limits)
      : limits_(limits), acceptor_(listenOn(context_, port)), router_(service, hosts(), std::move(log)) {
    co_spawn(context_, accept(), [](const std::exception_ptr&) {});
    thread_ = std::thread([this] { context_.run(); });
  }

  ~Implementation() {
    // The coroutines end when their sockets are closed, and the thread ends with the last one.
    post(context_, [this] {
      acceptor_.close();
      change_.cancel();
      for (Connection& connection : connections_) connection.close();
    });
    thread_.join();
  }

  std::uint16_t port() const { return acceptor_.local_endpoint().port(); }

 private:
  asio::awaitable<void> accept() {
    while (acceptor_.is_open()) {
      auto [error, socket] = co_await acceptor_.async_accept(awaited);
      if (!error) {
        co_await awaitVacancy();
        if (acceptor_.is_open()) serve(std::move(socket));
      } else if (acceptor_.is_open()) {
        // Most likely the process has too many open files. Waits until one may have been closed.
        change_.expires_after(std::chrono::milliseconds(100));
        co_await change_.async_wait(awaited);
      }
    }
  }

  /// Waits until one more connection may be served. Closes the connection that has been idle longest, once
  /// its time is up.
  asio::awaitable<void> awaitVacancy() {
    using Time = Connection::Clock::time_point;
    while (acceptor_.is_open() && connections_.size() - countParked() >= limits_.connections) {
      const auto idlest = std::ranges::min_element(connections_, {}, &Connection::idleSince);
      const bool idles = idlest->idleSince() != Time::max();
      const Time end = idles ? idlest->idleSince() + limits_.idleWhenCrowded : Time::max();
      const bool hasEnded = end <= Connection::Clock::now();
      if (hasEnded) idlest->close();
      change_.expires_at(hasEnded ? Time::max() : end);
      co_await change_.async_wait(awaited);
    }
  }

  void serve(tcp::socket socket) {
    Connection::Hooks hooks{.rested = [this] { change_.cancel(); },
                            .answered = [this] { askAgain(); },
                            .mayPark = [this] { return countParked() < limits_.parked; }};
    const auto connection =
        connections_.emplace(connections_.end(), std::move(socket), router_, limits_, std::move(hooks));
    co_spawn(context_, connection->serve(), [this, connection](const std::exception_ptr&) {
      connections_.erase(connection);
      change_.cancel();
    });
  }

  std::size_t countParked() const {
    return static_cast<std::size_t>(std::ranges::count_if(connections_, &Connection::isParked));
  }

  void askAgain() {
    for (Connection& connection : connections_) connection.askAgain();
  }

  std::vector<std::string> hosts() const {
    const std::string number = std::to_string(port());
    return {DEVSERVICE_HOST, "localhost", "localhost:" + number, "127.0.0.1:" + number};
  }

  const ServerLimits limits_;
  asio::io_context context_{1};
  tcp::acceptor acceptor_;
  Router router_;
  std::list<Connection> connections_;
  asio::steady_timer change_{context_};  // Cancelled when a connection becomes idle or parked, or ends.
  std::thread thread_;
};

Server::Server(IdentityService& service, std::uint16_t port, Log log, ServerLimits limits)
    : implementation_(std::make_unique<Implementation>(service, port, std::move(log), limits)) {}

Server::~Server() = default;

std::uint16_t Server::port() const {
  return implementation_->port();
}

}  // namespace devservice
