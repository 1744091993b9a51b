#include "tools/devservice/Server.h"

#include <algorithm>
#include <boost/asio/as_tuple.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/v6_only.hpp>
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
#include "tools/devservice/machineAddresses.h"

namespace devservice {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

constexpr auto awaited = asio::as_tuple(asio::use_awaitable);

tcp::acceptor listenOn(asio::io_context& context, std::string_view address, std::uint16_t port) {
  if (address.starts_with('[') && address.ends_with(']')) address = address.substr(1, address.size() - 2);
  try {
    const tcp::endpoint endpoint(asio::ip::make_address(address), port);
    tcp::acceptor acceptor(context, endpoint.protocol());
    acceptor.set_option(tcp::acceptor::reuse_address(true));
    if (endpoint.address().is_v6()) acceptor.set_option(asio::ip::v6_only(false));
    acceptor.bind(endpoint);
    acceptor.listen();
    return acceptor;
  } catch (const boost::system::system_error& error) {
    throw std::runtime_error("cannot listen on " + std::string(address) + ", port " + std::to_string(port) +
                             ": " + error.code().message());
  }
}

/// Returns the address as in a URL.
std::string hostFor(const asio::ip::address& address) {
  return address.is_v6() ? "[" + address.to_string() + "]" : address.to_string();
}

}  // namespace

/// Each connection is a coroutine; all run on one thread.
class Server::Implementation {
 public:
  Implementation(IdentityService& service, std::uint16_t port, Log log, const ServerLimits& limits,
                 Reach reach)
      : limits_(limits),
        acceptor_(listenOn(context_, reach.address, port)),
        router_(service, hosts(), std::move(log), std::move(reach.token)) {
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

  std::string localURL() const {
    const auto address = acceptor_.local_endpoint().address();
    return "http://" + (address.is_unspecified() ? "127.0.0.1" : hostFor(address)) + ":" +
           std::to_string(port());
  }

  std::vector<std::string> foreignAuthorities() const {
    const auto address = acceptor_.local_endpoint().address();
    std::vector<std::string> all;
    if (address.is_unspecified()) {
      all = machineAddresses(address.is_v6());
    } else if (!address.is_loopback()) {
      all = {hostFor(address)};
    }
    for (std::string& host : all) host += ":" + std::to_string(port());
    return all;
  }

 private:
  asio::awaitable<void> accept() {
    while (acceptor_.is_open()) {
      auto [error, socket] = co_await acceptor_.async_accept(awaited);
      if (!error) {
        // Another machine's connection never holds up this loop, and with it this machine's connections.
        const asio::ip::address caller = Connection::callerOf(socket);
        if (caller.is_loopback()) co_await awaitVacancy();
        if (acceptor_.is_open() && (caller.is_loopback() || makeRoom(caller))) serve(std::move(socket));
      } else if (acceptor_.is_open()) {
        // Most likely the process has too many open files. Waits until one may have been closed.
        change_.expires_after(std::chrono::milliseconds(100));
        co_await change_.async_wait(awaited);
      }
    }
  }

  /// Waits until one more connection of this machine may be served. Closes the one that has been idle
  /// longest, once its time is up.
  asio::awaitable<void> awaitVacancy() {
    using Time = Connection::Clock::time_point;
    for (;;) {
      const auto [count, idlest] = crowd([](const Connection& c) { return isLocal(c) && !c.isParked(); });
      if (!acceptor_.is_open() || count < limits_.connections) co_return;
      const bool idles = idlest->idleSince() != Time::max();
      const Time end = idles ? idlest->idleSince() + limits_.idleWhenCrowded : Time::max();
      const bool hasEnded = end <= Connection::Clock::now();
      if (hasEnded) idlest->close();
      change_.expires_at(hasEnded ? Time::max() : end);
      co_await change_.async_wait(awaited);
    }
  }

  /// Returns true if one more connection of that machine, which is another one, may be served. Closes an idle
  /// one if there are too many.
  bool makeRoom(const asio::ip::address& caller) {
    const auto leavesRoom = [](const Crowd& crowd, std::size_t limit) {
      if (crowd.count < limit) return true;
      if (crowd.idlest->idleSince() == Connection::Clock::time_point::max()) return false;
      crowd.idlest->close();
      return true;
    };
    return leavesRoom(crowd([&](const Connection& c) { return c.caller() == caller; }),
                      limits_.foreignPerPeer) &&
           leavesRoom(crowd([](const Connection& c) { return !isLocal(c); }), limits_.foreign);
  }

  /// Some of the open connections: how many, and the one that has been idle longest, if any is idle.
  struct Crowd {
    std::size_t count = 0;
    Connection* idlest = nullptr;
  };

  template <typename Condition>
  Crowd crowd(Condition isMember) {
    Crowd crowd;
    for (Connection& connection : connections_) {
      if (!connection.isOpen() || !isMember(connection)) continue;
      ++crowd.count;
      if (!crowd.idlest || connection.idleSince() < crowd.idlest->idleSince()) crowd.idlest = &connection;
    }
    return crowd;
  }

  static bool isLocal(const Connection& connection) { return connection.caller().is_loopback(); }

  void serve(tcp::socket socket) {
    const bool isHere = Connection::callerOf(socket).is_loopback();
    const auto mayPark = [this, isHere] {
      return !isHere ||
             crowd([](const Connection& c) { return isLocal(c) && c.isParked(); }).count < limits_.parked;
    };
    Connection::Hooks hooks{.rested = [this] { change_.cancel(); },
                            .answered = [this] { askAgain(); },
                            .mayPark = mayPark,
                            .turn = isHere ? nullptr : &foreignTurn_};
    const auto connection =
        connections_.emplace(connections_.end(), std::move(socket), router_, limits_, std::move(hooks));
    co_spawn(context_, connection->serve(), [this, connection](const std::exception_ptr&) {
      connections_.erase(connection);
      change_.cancel();
    });
  }

  void askAgain() {
    for (Connection& connection : connections_) connection.askAgain();
  }

  std::vector<std::string> hosts() const {
    const std::string number = ":" + std::to_string(port());
    std::vector<std::string> all = foreignAuthorities();
    all.insert(all.end(), {DEVSERVICE_HOST, "localhost", "localhost" + number, "127.0.0.1" + number});
    return all;
  }

  const ServerLimits limits_;
  asio::io_context context_{1};
  tcp::acceptor acceptor_;
  Router router_;
  std::list<Connection> connections_;
  Connection::Clock::time_point foreignTurn_;
  asio::steady_timer change_{context_};  // Cancelled when a connection becomes idle or parked, or ends.
  std::thread thread_;
};

Server::Server(IdentityService& service, std::uint16_t port, Log log, ServerLimits limits, Reach reach)
    : implementation_(
          std::make_unique<Implementation>(service, port, std::move(log), limits, std::move(reach))) {}

Server::~Server() = default;

std::uint16_t Server::port() const {
  return implementation_->port();
}

std::string Server::localURL() const {
  return implementation_->localURL();
}

std::vector<std::string> Server::foreignURLs() const {
  std::vector<std::string> urls = implementation_->foreignAuthorities();
  for (std::string& url : urls) url.insert(0, "http://");
  return urls;
}

}  // namespace devservice
