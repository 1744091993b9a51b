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

/// One connection, from its first request to its last. For the thread of its socket.
class Connection {
 public:
  using Clock = std::chrono::steady_clock;
  using Socket = boost::asio::ip::tcp::socket;

  /// Calls `changed` each time it begins to wait for a request, and when one was answered. What is passed by
  /// reference has to outlive the connection.
  Connection(Socket socket, Router& router, const ServerLimits& limits, std::function<void()> changed);

  /// Reads requests, has them answered, and writes the replies, each as its fault says. Ends with the
  /// connection.
  boost::asio::awaitable<void> serve();

  /// Since when it has been waiting for a request; the far future while it serves one.
  Clock::time_point idleSince() const { return idleSince_; }

  /// Asks again for a reply that is worth it; to be called when a request was answered.
  void askAgain();

  /// Ends it at once, whatever it is doing.
  void close();

 private:
  using Parser = boost::beast::http::request_parser<boost::beast::http::string_body>;
  template <typename T>
  using Awaitable = boost::asio::awaitable<T>;

  Awaitable<bool> awaitRequest();
  Awaitable<boost::system::error_code> read(Parser& parser);
  Awaitable<HTTPReply> answer(const HTTPRequest& request);
  Awaitable<bool> write(const HTTPRequest& request, const HTTPReply& reply, bool keepAlive);
  Awaitable<void> awaitEnd(Clock::duration limit);

  boost::beast::tcp_stream stream_;
  const std::string peer_;
  Router& router_;
  const ServerLimits& limits_;
  const std::function<void()> changed_;
  boost::asio::steady_timer pause_;
  bool asksAgain_ = false;
  boost::beast::flat_buffer buffer_;
  Clock::time_point idleSince_;
};

}  // namespace devservice
