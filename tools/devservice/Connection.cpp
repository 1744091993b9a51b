#include "tools/devservice/Connection.h"

#include <boost/asio/as_tuple.hpp>
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
/// How long a refused connection stays, so that the peer can read why.
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
  // What the URL names counts, and not the field.
  if (target.authority) request.headers.emplace_back("Host", *target.authority);
  for (const auto& field : message) {
    if (!target.authority || field.name() != http::field::host)
      request.headers.emplace_back(field.name_string(), field.value());
  }
  return request;
}

/// The HTTP status that says why a request could not be read; 0 where the connection has failed.
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
  boost::system::error_code ignored;  // the next read tells
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
    // Not a part of the loop's condition: g++ 12 does not stop then where it is false.
    if (!co_await awaitRequest()) co_return;
    Parser parser;
    const boost::system::error_code error = co_await read(parser);
    const int refused = error ? statusOf(error) : 0;
    if (error && refused == 0) co_return;
    const Clock::time_point start = Clock::now();
    const HTTPRequest request = requestFrom(parser.get(), peer_);
    // After what is not understood, nothing says where the next request starts.
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
    // The system discards a reply that is on its way when the peer sends more than was read.
    boost::system::error_code ignored;
    stream_.socket().shutdown(Socket::shutdown_send, ignored);
    co_await awaitEnd(lingering);
  }
}

/// Waits for the first byte of a request.
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
  while (reply.wait.count() > 0 && Clock::now() < end && stream_.socket().is_open()) {
    asksAgain_ = true;
    pause_.expires_at(end);
    co_await pause_.async_wait(awaited);
    asksAgain_ = false;
    reply = router_.answer(request);
  }
  changed_();
  co_return reply;
}

/// Does what the reply's fault asks for; false when the connection is of no more use.
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

/// Waits until the peer ends the connection, whatever it sends until then.
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
