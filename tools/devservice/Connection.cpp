#include "tools/devservice/Connection.h"

#include <algorithm>
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

#include "tools/devservice/makeReply.h"
#include "tools/support/Target.h"

namespace devservice {
namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;

constexpr auto awaited = asio::as_tuple(asio::use_awaitable);
/// Bytes that were received but not parsed: a header, and what came with its end.
constexpr std::size_t maxBuffered = 2 * maxHeadSize;

HTTPRequest requestFrom(const http::request<http::string_body>& message, const std::string& peer) {
  support::Target target = support::parseTarget(message.target());
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
  if (error == http::error::body_limit || error == http::error::buffer_overflow) return 413;
  if (error == http::error::bad_transfer_encoding) return 501;
  return error.category() == make_error_code(http::error::bad_method).category() ? 400 : 0;
}

HTTPReply refusalOf(int status) {
  if (status == 501) return makeRefusal(status, Code::malformedRequest, "Transfer-Encoding");
  return makeRefusal(status, status == 400 ? Code::malformedRequest : Code::tooLarge);
}

bool hasUnknownCoding(const http::request<http::string_body>& message) {
  const auto [first, last] = message.equal_range(http::field::transfer_encoding);
  return std::any_of(first, last,
                     [](const auto& field) { return !boost::beast::iequals(field.value(), "chunked"); });
}

}  // namespace

Connection::Connection(Socket socket, Router& router, const ServerLimits& limits, Hooks hooks)
    : stream_(std::move(socket)),
      caller_(callerOf(stream_.socket())),
      router_(router),
      limits_(limits),
      hooks_(std::move(hooks)),
      pause_(stream_.get_executor()),
      buffer_(maxBuffered),
      idleSince_(Clock::now()) {
  boost::system::error_code ignored;  // The next read fails as well then.
  stream_.socket().set_option(asio::ip::tcp::no_delay(true), ignored);
}

asio::ip::address Connection::callerOf(const Socket& socket) {
  boost::system::error_code error;
  const asio::ip::address address = socket.remote_endpoint(error).address();
  // A socket for both kinds of addresses has an IPv4 one as ::ffff:192.0.2.1.
  const bool isMapped = address.is_v6() && address.to_v6().is_v4_mapped();
  return isMapped ? make_address_v4(asio::ip::v4_mapped, address.to_v6()) : address;
}

void Connection::close() {
  idleSince_ = Clock::time_point::max();
  pause_.cancel();
  stream_.close();
}

void Connection::askAgain() {
  if (!asksAgain_) return;
  parkedUntil_ = Clock::now();
  pause_.cancel();
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
    const HTTPRequest request = requestFrom(parser.get(), caller_.to_string());
    // After a malformed request it is unknown where the next one starts.
    goesOn = !error && parser.keep_alive();
    HTTPReply reply;
    if (error) {
      reply = refusalOf(refused);
    } else {
      reply = co_await answer(request);
      goesOn = goesOn && reply.status != 503;  // Makes room.
    }
    const std::uint64_t entry = router_.log(request, reply);
    const bool isWhole = co_await write(parser.get(), reply, goesOn);
    router_.finish(entry, Clock::now() - start);
    goesOn = goesOn && isWhole;
    if (!error) continue;
    // The system would discard the reply if the socket were closed while the caller still sends.
    boost::system::error_code ignored;
    stream_.socket().shutdown(Socket::shutdown_send, ignored);
    co_await awaitEnd(limits_.lingering);
  }
}

/// Waits for the first byte of a request. Returns false if the connection has ended.
asio::awaitable<bool> Connection::awaitRequest() {
  skipEmptyLines();
  if (buffer_.size() > 0) co_return true;
  constexpr std::size_t enough = 4096;
  idleSince_ = Clock::now();
  hooks_.rested();
  stream_.expires_after(limits_.idle);
  boost::system::error_code failure;
  while (!failure && buffer_.size() == 0) {
    const auto [error, size] = co_await stream_.async_read_some(buffer_.prepare(enough), awaited);
    buffer_.commit(size);
    skipEmptyLines();
    failure = error;
  }
  idleSince_ = Clock::time_point::max();
  co_return !failure;
}

/// Drops the ends of lines before a request, which some clients send after a body.
void Connection::skipEmptyLines() {
  const std::string_view received(static_cast<const char*>(buffer_.data().data()), buffer_.size());
  buffer_.consume(std::min(received.find_first_not_of("\r\n"), received.size()));
}

asio::awaitable<boost::system::error_code> Connection::read(Parser& parser) {
  constexpr std::string_view interim = "HTTP/1.1 100 Continue\r\n\r\n";
  parser.header_limit(maxHeadSize);
  parser.body_limit(maxBodySize);
  stream_.expires_after(limits_.request);
  auto [error, size] = co_await http::async_read_header(stream_, buffer_, parser, awaited);
  if (!error && hasUnknownCoding(parser.get())) error = http::error::bad_transfer_encoding;
  if (!error && boost::beast::iequals(parser.get()[http::field::expect], "100-continue")) {
    std::tie(error, size) = co_await asio::async_write(stream_, asio::buffer(interim), awaited);
  }
  if (!error) std::tie(error, size) = co_await http::async_read(stream_, buffer_, parser, awaited);
  co_return error;
}

/// Waits until a request of another machine may be answered. After each the next one waits for as long as the
/// answer took, so that a flood of them leaves half of the thread's time to callers on this machine.
asio::awaitable<void> Connection::awaitTurn() {
  while (hooks_.turn && Clock::now() < *hooks_.turn && stream_.socket().is_open()) {
    pause_.expires_at(*hooks_.turn);
    co_await pause_.async_wait(awaited);
  }
}

asio::awaitable<HTTPReply> Connection::answer(const HTTPRequest& request) {
  co_await awaitTurn();
  const Clock::time_point start = Clock::now();
  HTTPReply reply = router_.answer(request);
  if (hooks_.turn) *hooks_.turn = Clock::now() + (Clock::now() - start);
  if (reply.wait.count() == 0) hooks_.answered();
  const Clock::time_point end = Clock::now() + reply.wait;
  const bool isParkable = reply.fault == TransportFault::delay || reply.fault == TransportFault::silence ||
                          reply.wait.count() > 0;
  if (isParkable && !hooks_.mayPark()) co_return makeRefusal(503, Code::tooManyWaiting);
  while (reply.wait.count() > 0 && Clock::now() < end && stream_.socket().is_open()) {
    asksAgain_ = true;
    co_await park(end);
    asksAgain_ = false;
    reply = router_.answer(request);
  }
  co_return reply;
}

/// Waits until `end`, or until askAgain() is called. Closes the connection if the caller has left.
asio::awaitable<void> Connection::park(Clock::time_point end) {
  using namespace asio::experimental::awaitable_operators;
  isParked_ = true;
  parkedUntil_ = end;
  hooks_.rested();
  // The connection may have been closed before: the wait would not end by that any more. The time is asked,
  // and not which wait ended first: bytes may come at the moment of askAgain().
  while (Clock::now() < parkedUntil_ && stream_.socket().is_open()) {
    pause_.expires_at(parkedUntil_);
    const auto first =
        co_await (pause_.async_wait(awaited) || stream_.socket().async_wait(Socket::wait_read, awaited));
    if (first.index() == 1 && !takeAhead()) close();
  }
  isParked_ = false;
}

/// Takes what the caller sends before it has the reply, so that its leaving is noticed. Returns false if the
/// caller has left or sends too much. A socket that is said to be readable may have nothing to read: the
/// bytes were taken before the event for them came.
bool Connection::takeAhead() {
  boost::system::error_code error;
  stream_.socket().non_blocking(true, error);
  const std::size_t room = maxBuffered - buffer_.size();
  if (error || room == 0) return false;
  constexpr std::size_t atOnce = 4096;
  buffer_.commit(stream_.socket().receive(buffer_.prepare(std::min(room, atOnce)), 0, error));
  return !error || error == asio::error::would_block;
}

/// Writes the reply with its fault. Returns false if the connection must be closed.
asio::awaitable<bool> Connection::write(const Parser::value_type& message, const HTTPReply& reply,
                                        bool keepAlive) {
  if (reply.fault == TransportFault::delay) co_await park(Clock::now() + reply.delay);
  if (reply.fault == TransportFault::silence) co_await park(Clock::now() + limits_.silence);
  if (!stream_.socket().is_open()) co_return false;
  if (reply.fault == TransportFault::reset) {
    boost::system::error_code ignored;
    stream_.socket().set_option(Socket::linger(true, 0), ignored);
  }
  const bool isUnanswered = reply.fault == TransportFault::reset || reply.fault == TransportFault::drop ||
                            reply.fault == TransportFault::silence;
  if (isUnanswered) co_return false;
  const bool isCut = reply.fault == TransportFault::cut;

  http::response<http::span_body<const char>> response(http::status(reply.status), message.version());
  for (const auto& [name, value] : reply.headers) response.set(name, value);
  response.set(http::field::content_type, reply.contentType);
  if (reply.status != 204) response.content_length(reply.body.size());
  response.keep_alive(keepAlive);
  const std::size_t size = reply.body.size() / (isCut ? 2 : 1);
  response.body() = {reply.body.data(), message.method() == http::verb::head ? 0 : size};
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
