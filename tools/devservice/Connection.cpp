#include "tools/devservice/Connection.h"

#include <boost/asio/as_tuple.hpp>
#include <boost/asio/experimental/awaitable_operators.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/string.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/rfc7230.hpp>
#include <boost/beast/http/span_body.hpp>
#include <boost/beast/http/write.hpp>
#include <string_view>
#include <utility>

#include "tools/devservice/Target.h"
#include "tools/devservice/makeReply.h"

namespace devservice {
namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;

constexpr auto awaited = asio::as_tuple(asio::use_awaitable);
/// How long a connection stays open after a refusal, so that the caller can read the reason.
constexpr std::chrono::seconds lingering{1};

std::string addressOf(const asio::ip::tcp::socket& socket) {
  boost::system::error_code error;
  const auto endpoint = socket.remote_endpoint(error);
  return error ? "" : endpoint.address().to_string();
}

HTTPRequest requestFrom(const http::request<http::string_body>& message, const std::string& peer) {
  Target target = parseTarget(message.target());
  HTTPRequest request{.method = message.method_string(),
                      .path = std::move(target.path),
                      .headers = {},
                      .body = message.body(),
                      .peer = peer,
                      .query = std::move(target.query),
                      .isProxied = target.authority.has_value()};
  // For a proxy the host in the URL counts, not the field.
  if (target.authority) request.headers.emplace_back("Host", *target.authority);
  for (const auto& field : message) {
    if (!target.authority || field.name() != http::field::host)
      request.headers.emplace_back(field.name_string(), field.value());
  }
  return request;
}

/// Returns the HTTP status for a request that could not be read, or 0 if the connection has failed.
int statusOf(boost::system::error_code error) {
  if (error == http::error::end_of_stream || error == http::error::partial_message) return 0;
  if (error == http::error::header_limit) return 431;
  if (error == http::error::body_limit) return 413;
  return error.category() == make_error_code(http::error::bad_method).category() ? 400 : 0;
}

}  // namespace

Connection::Connection(Socket socket, Router& router, const ServerLimits& limits,
                       std::function<void()> changed)
    : stream_(std::move(socket)),
      peer_(addressOf(stream_.socket())),
      router_(router),
      limits_(limits),
      changed_(std::move(changed)),
      pause_(stream_.get_executor()),
      idleSince_(Clock::now()) {
  boost::system::error_code ignored;  // The next read fails as well then.
  stream_.socket().set_option(asio::ip::tcp::no_delay(true), ignored);
}

void Connection::close() {
  idleSince_ = Clock::time_point::max();
  pause_.cancel();
  stream_.close();
}

void Connection::askAgain() {
  if (asksAgain_) pause_.cancel();
}

asio::awaitable<void> Connection::serve() {
  for (bool goesOn = true; goesOn;) {
    // Not part of the loop's condition: compiled by g++ 12, the loop would go on if it is false.
    if (!co_await awaitRequest()) co_return;
    Parser parser;
    const boost::system::error_code error = co_await read(parser);
    const int refused = error ? statusOf(error) : 0;
    if (error && refused == 0) co_return;
    const Clock::time_point start = Clock::now();
    const HTTPRequest request = requestFrom(parser.get(), peer_);
    // After a malformed request it is unknown where the next one starts.
    goesOn = !error && parser.keep_alive();
    HTTPReply reply;
    if (error) {
      reply = makeRefusal(refused, refused == 400 ? Code::malformedRequest : Code::tooLarge);
    } else {
      reply = co_await answer(request);
    }
    const std::uint64_t entry = router_.log(request, reply);
    const bool isWhole = co_await write(request, reply, goesOn);
    router_.finish(entry, Clock::now() - start);
    goesOn = goesOn && isWhole;
    if (!error) continue;
    // The system would discard the reply if the socket were closed while the caller still sends.
    boost::system::error_code ignored;
    stream_.socket().shutdown(Socket::shutdown_send, ignored);
    co_await awaitEnd(lingering);
  }
}

/// Waits for the first byte of a request. Returns false if the connection has ended.
asio::awaitable<bool> Connection::awaitRequest() {
  if (buffer_.size() > 0) co_return true;
  constexpr std::size_t enough = 4096;
  idleSince_ = Clock::now();
  changed_();
  stream_.expires_after(limits_.idle);
  const auto [error, size] = co_await stream_.async_read_some(buffer_.prepare(enough), awaited);
  idleSince_ = Clock::time_point::max();
  buffer_.commit(size);
  co_return !error;
}

asio::awaitable<boost::system::error_code> Connection::read(Parser& parser) {
  constexpr std::string_view interim = "HTTP/1.1 100 Continue\r\n\r\n";
  parser.header_limit(maxHeadSize);
  parser.body_limit(maxBodySize);
  stream_.expires_after(limits_.request);
  auto [error, size] = co_await http::async_read_header(stream_, buffer_, parser, awaited);
  if (!error && boost::beast::iequals(parser.get()[http::field::expect], "100-continue")) {
    std::tie(error, size) = co_await asio::async_write(stream_, asio::buffer(interim), awaited);
  }
  if (!error) std::tie(error, size) = co_await http::async_read(stream_, buffer_, parser, awaited);
  co_return error;
}

asio::awaitable<HTTPReply> Connection::answer(const HTTPRequest& request) {
  HTTPReply reply = router_.answer(request);
  const Clock::time_point end = Clock::now() + reply.wait;
  bool isWatched = buffer_.size() == 0;
  while (reply.wait.count() > 0 && Clock::now() < end && stream_.socket().is_open()) {
    asksAgain_ = true;
    pause_.expires_at(end);
    const bool isReadable = co_await awaitPause(isWatched);
    asksAgain_ = false;
    if (isReadable && hasEnded()) break;
    if (isReadable) isWatched = false;  // The next request has come already.
    reply = router_.answer(request);
  }
  changed_();
  co_return reply;
}

/// Waits until pause_ expires or is cancelled and, if it watches the socket, until something can be read.
/// Returns true in the last case.
asio::awaitable<bool> Connection::awaitPause(bool watches) {
  using namespace asio::experimental::awaitable_operators;
  if (!watches) {
    co_await pause_.async_wait(awaited);
    co_return false;
  }
  const auto first =
      co_await (pause_.async_wait(awaited) || stream_.socket().async_wait(Socket::wait_read, awaited));
  co_return first.index() == 1;
}

/// Returns true if the caller has ended the connection. For a socket that can be read, else it blocks.
bool Connection::hasEnded() {
  char next = 0;
  boost::system::error_code error;
  stream_.socket().receive(asio::buffer(&next, 1), Socket::message_peek, error);
  return error.failed();
}

/// Writes the reply with its fault. Returns false if the connection must be closed.
asio::awaitable<bool> Connection::write(const HTTPRequest& request, const HTTPReply& reply, bool keepAlive) {
  if (reply.fault == TransportFault::delay) {
    pause_.expires_after(reply.delay);
    co_await pause_.async_wait(awaited);
  }
  if (reply.fault == TransportFault::reset) {
    boost::system::error_code ignored;
    stream_.socket().set_option(Socket::linger(true, 0), ignored);
  }
  if (reply.fault == TransportFault::reset || reply.fault == TransportFault::drop) co_return false;
  if (reply.fault == TransportFault::silence) {
    co_await awaitEnd(limits_.silence);
    co_return false;
  }
  const bool isCut = reply.fault == TransportFault::cut;

  http::response<http::span_body<const char>> response(http::status(reply.status), 11);
  for (const auto& [name, value] : reply.headers) response.set(name, value);
  response.set(http::field::content_type, reply.contentType);
  if (reply.status != 204) response.content_length(reply.body.size());
  response.keep_alive(keepAlive);
  const std::size_t size = reply.body.size() / (isCut ? 2 : 1);
  response.body() = {reply.body.data(), request.method == "HEAD" ? 0 : size};
  stream_.expires_after(limits_.request);
  const auto [error, written] = co_await http::async_write(stream_, response, awaited);
  co_return !error && !isCut;
}

/// Waits until the caller ends the connection, for at most `limit`. Drops what the caller still sends.
asio::awaitable<void> Connection::awaitEnd(Clock::duration limit) {
  boost::system::error_code error;
  stream_.expires_after(limit);
  while (!error) {
    buffer_.clear();
    const auto [ended, size] = co_await stream_.async_read_some(buffer_.prepare(maxHeadSize), awaited);
    error = ended;
  }
}

}  // namespace devservice
