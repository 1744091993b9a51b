#include "bench/Client.h"

#include <arpa/inet.h>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <charconv>
#include <httplib.h>
#include <netinet/tcp.h>
#include <stdexcept>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include "bench/CurlPost.h"
#include "orvane/client/serviceBaseURL.h"
#include "orvane/platform/MainQueue.h"

namespace orvane::bench {
namespace {

namespace http = boost::beast::http;

void require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

class CurlEasyClient final : public Client {
 public:
  explicit CurlEasyClient(std::uint16_t port) : post_(port) {}

  const std::string& post(std::string_view path, const std::string& body) override {
    post_.prepare(path, body);
    require(curl_easy_perform(post_.handle()) == CURLE_OK, "curl: no reply");
    return post_.reply();
  }

 private:
  CurlPost post_;
};

constexpr const char* compression = "gzip, deflate";

class HttplibClient final : public Client {
 public:
  explicit HttplibClient(std::uint16_t port) : client_("127.0.0.1", port) {
    client_.set_tcp_nodelay(true);
    client_.set_keep_alive(true);
  }

  const std::string& post(std::string_view path, const std::string& body) override {
    httplib::Result result = client_.Post(std::string(path), headers_, body, "application/json");
    require(result != nullptr, "cpp-httplib: no reply");
    body_ = std::move(result->body);
    return body_;
  }

 private:
  httplib::Client client_;
  const httplib::Headers headers_ = {{"Host", std::string(serviceHost())},
                                     {"Accept-Encoding", compression},
                                     {"XRAPI-VERSION", "1.0"},
                                     {"XRAPI-DEVICE-TYPE", "1"}};
  std::string body_;
};

class BeastClient final : public Client {
 public:
  explicit BeastClient(std::uint16_t port) {
    socket_.connect({boost::asio::ip::address_v4::loopback(), port});
    socket_.set_option(boost::asio::ip::tcp::no_delay(true));
    request_.method(http::verb::post);
    const std::string_view host = serviceHost();
    request_.set(http::field::host, {host.data(), host.size()});
    request_.set(http::field::accept_encoding, compression);
    request_.set(http::field::user_agent, "bench");
    request_.set(http::field::accept, "*/*");
    request_.set(http::field::content_type, "application/json");
    request_.set("XRAPI-VERSION", "1.0");
    request_.set("XRAPI-DEVICE-TYPE", "1");
  }

  const std::string& post(std::string_view path, const std::string& body) override {
    request_.target({path.data(), path.size()});
    request_.body() = body;
    request_.prepare_payload();
    http::write(socket_, request_);
    response_ = {};
    http::read(socket_, buffer_, response_);
    return response_.body();
  }

 private:
  boost::asio::io_context context_;
  boost::asio::ip::tcp::socket socket_{context_};
  http::request<http::string_body> request_;
  http::response<http::string_body> response_;
  boost::beast::flat_buffer buffer_;
};

class SocketClient final : public Client {
 public:
  explicit SocketClient(std::uint16_t port) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    require(connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
            "socket: no connection");
    const int on = 1;
    setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  }
  ~SocketClient() override { close(socket_); }

  const std::string& post(std::string_view path, const std::string& body) override {
    request_.assign("POST ").append(path).append(" HTTP/1.1\r\nHost: ").append(serviceHost());
    request_.append("\r\nAccept-Encoding: ").append(compression);
    request_.append(
        "\r\nUser-Agent: bench\r\nAccept: */*\r\n"
        "Content-Type: application/json\r\nXRAPI-VERSION: 1.0\r\nXRAPI-DEVICE-TYPE: 1\r\nContent-Length: ");
    request_.append(std::to_string(body.size())).append("\r\n\r\n").append(body);
    require(send(socket_, request_.data(), request_.size(), MSG_NOSIGNAL) == std::ssize(request_),
            "socket: nothing sent");
    received_.clear();
    std::size_t bodyStart = 0;
    while ((bodyStart = received_.find("\r\n\r\n")) == received_.npos) receive();
    bodyStart += 4;
    const std::size_t length = bodyLength(std::string_view(received_).substr(0, bodyStart));
    received_.reserve(bodyStart + length);
    while (received_.size() < bodyStart + length) receive();
    body_.assign(received_, bodyStart);
    return body_;
  }

 private:
  void receive() {
    const ssize_t count = recv(socket_, chunk_.data(), chunk_.size(), 0);
    require(count > 0, "socket: no reply");
    received_.append(chunk_.data(), static_cast<std::size_t>(count));
  }

  static std::size_t bodyLength(std::string_view head) {
    constexpr std::string_view name = "\r\nContent-Length: ";
    const std::size_t at = head.find(name);
    require(at != head.npos, "socket: a reply without a length");
    std::size_t length = 0;
    std::from_chars(head.data() + at + name.size(), head.data() + head.size(), length);
    return length;
  }

  int socket_;
  std::string request_;
  std::string received_;
  std::string body_;
  std::array<char, 65536> chunk_;
};

/// Has a client post on a thread of its own, and waits on a main queue for the reply.
class HandingClient final : public Client {
 public:
  explicit HandingClient(std::unique_ptr<Client> client) : client_(std::move(client)) {}
  ~HandingClient() override {
    jobs_.stop();
    thread_.join();
  }

  const std::string& post(std::string_view path, const std::string& body) override {
    jobs_.async([this, path = std::string(path), body] {
      reply_ = &client_->post(path, body);
      replies_.async([this] { replies_.stop(); });
    });
    replies_.run();
    return *reply_;
  }

 private:
  const std::unique_ptr<Client> client_;
  MainQueue jobs_;
  MainQueue replies_;
  const std::string* reply_ = nullptr;
  std::thread thread_{[this] { jobs_.run(); }};
};

}  // namespace

Client::~Client() = default;

std::unique_ptr<Client> makeCurlEasyClient(std::uint16_t port) {
  return std::make_unique<CurlEasyClient>(port);
}
std::unique_ptr<Client> makeHttplibClient(std::uint16_t port) {
  return std::make_unique<HttplibClient>(port);
}
std::unique_ptr<Client> makeBeastClient(std::uint16_t port) {
  return std::make_unique<BeastClient>(port);
}
std::unique_ptr<Client> makeSocketClient(std::uint16_t port) {
  return std::make_unique<SocketClient>(port);
}

std::unique_ptr<Client> makeHandingClient(std::unique_ptr<Client> client) {
  return std::make_unique<HandingClient>(std::move(client));
}

}  // namespace orvane::bench
