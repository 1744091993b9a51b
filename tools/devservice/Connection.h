#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <chrono>
#include <functional>
#include <string>

#include "tools/devservice/HTTPReply.h"
#include "tools/devservice/HTTPRequest.h"
#include "tools/devservice/Limits.h"
#include "tools/devservice/Router.h"

namespace devservice {

/// Serves one connection, from its first request to its last. Not thread-safe: for the thread that runs its
/// socket.
class Connection {
 public:
  using Clock = std::chrono::steady_clock;
  using Socket = boost::asio::ip::tcp::socket;

  /// The functions of the server that a connection calls.
  struct Hooks {
    std::function<void()> rested;    ///< Called each time the connection becomes idle or parked.
    std::function<void()> answered;  ///< Called each time a request was answered.
    std::function<bool()> mayPark;   ///< Returns false if no more connections may be parked.
    /// When the next request of another machine may be answered. Null for a caller on this machine.
    Clock::time_point* turn = nullptr;
  };

  /// `router` and `limits` must outlive the connection.
  Connection(Socket socket, Router& router, const ServerLimits& limits, Hooks hooks);

  /// Reads requests, lets the router answer them, and writes the replies with their faults. Returns when the
  /// connection has ended.
  boost::asio::awaitable<void> serve();

  /// Returns the time since which the connection has waited for a request, or the far future while it serves
  /// one.
  Clock::time_point idleSince() const { return idleSince_; }

  /// Returns the address of the caller at the socket's other end, or an unspecified one if it has gone.
  static boost::asio::ip::address callerOf(const Socket& socket);

  const boost::asio::ip::address& caller() const { return caller_; }

  /// Returns false after the connection was closed.
  bool isOpen() { return stream_.socket().is_open(); }

  /// Returns true while the connection is kept without work: its reply is late, never comes, or is held back.
  bool isParked() const { return isParked_; }

  /// If this connection's reply is held back, has the router answer its request again. Call it after every
  /// answer to another connection.
  void askAgain();

  /// Closes the connection, even in the middle of a request.
  void close();

 private:
  using Parser = boost::beast::http::request_parser<boost::beast::http::string_body>;
  template <typename T>
  using Awaitable = boost::asio::awaitable<T>;

  Awaitable<bool> awaitRequest();
  void skipEmptyLines();
  Awaitable<boost::system::error_code> read(Parser& parser);
  Awaitable<void> awaitTurn();
  Awaitable<HTTPReply> answer(const HTTPRequest& request);
  Awaitable<void> park(Clock::time_point end);
  bool takeAhead();
  Awaitable<bool> write(const Parser::value_type& message, const HTTPReply& reply, bool keepAlive);
  Awaitable<void> awaitEnd(Clock::duration limit);

  boost::beast::tcp_stream stream_;
  const boost::asio::ip::address caller_;
  Router& router_;
  const ServerLimits& limits_;
  const Hooks hooks_;
  boost::asio::steady_timer pause_;
  bool isParked_ = false;
  bool asksAgain_ = false;
  Clock::time_point parkedUntil_;
  boost::beast::flat_buffer buffer_;  // Limited, since the parser collects a chunk's line or a trailer in it.
  Clock::time_point idleSince_;
};

}  // namespace devservice
