#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <latch>
#include <list>
#include <netinet/in.h>
#include <string_view>
#include <sys/socket.h>
#include <thread>
#include <tuple>
#include <unistd.h>

#include "tests/tools/ServiceBench.h"
#include "tools/devservice/Server.h"
#include "tools/devservice/machineAddresses.h"

namespace devservice {
namespace {

using Json = nlohmann::json;
using namespace std::chrono;

const std::string inspectAll = "GET /inspect HTTP/1.1\r\nHost: localhost\r\n\r\n";
const std::string awaitMessage =
    "GET /inspect?mobile=" + number + "&wait=60000 HTTP/1.1\r\nHost: localhost\r\n\r\n";

/// Returns a call that is refused with 2001, unless the number demands a fault.
std::string callFor(const std::string& mobile, const std::string& field = "") {
  const HTTPRequest request = askCode(mobile, "");
  return "POST " + request.path + " HTTP/1.1\r\nContent-Type: application/json\r\nXRAPI-VERSION: 1.0\r\n" +
         "XRAPI-DEVICE-TYPE: 1\r\n" + field + "Content-Length: " + std::to_string(request.body.size()) +
         "\r\n\r\n" + request.body;
}

/// Returns the object in a reply. Discarded unless the reply is whole.
Json bodyOf(const std::string& reply) {
  return Json::parse(std::ranges::find(reply, '{'), reply.end(), nullptr, false);
}

/// A connection to a server on this machine.
class Client {
 public:
  explicit Client(const Server& server, const std::string& host = "127.0.0.1") {
    const timeval patience{.tv_sec = 60, .tv_usec = 0};
    setsockopt(descriptor_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    sockaddr_in address{AF_INET, htons(server.port()), {}, {}};
    inet_pton(AF_INET, host.c_str(), &address.sin_addr);
    EXPECT_EQ(connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  }
  Client(Client&&) = delete;
  ~Client() { close(descriptor_); }

  Client& send(std::string_view text) {
    EXPECT_EQ(::send(descriptor_, text.data(), text.size(), MSG_NOSIGNAL), ssize_t(text.size()));
    return *this;
  }

  /// Returns a reply, or the part of it that came before the connection ended, or the error that it ended
  /// with.
  std::string receive() {
    std::string reply;
    char buffer[4096];
    ssize_t count = 0;
    while (!bodyOf(reply).is_object() && (count = recv(descriptor_, buffer, sizeof buffer, 0)) > 0) {
      reply.append(buffer, std::size_t(count));
    }
    return count < 0 ? std::strerror(errno) : reply;
  }

  Json codeOf(std::string_view text) { return bodyOf(send(text).receive())["code"]; }

  /// Returns true if the server has neither sent anything nor closed the connection.
  bool isSilent() const {
    char byte = 0;
    return recv(descriptor_, &byte, 1, MSG_PEEK | MSG_DONTWAIT) < 0;
  }

 private:
  const int descriptor_ = socket(AF_INET, SOCK_STREAM, 0);
};

TEST(DevServer, KeepsItsPortItsConnectionsAndFieldsAsTheyCame) {
  IdentityService service;
  const Server server(service);
  EXPECT_ANY_THROW(Server(service, server.port()));
  Client connection(server);
  EXPECT_EQ(connection.codeOf(callFor(number, "XRAPI-CLIENT-ID:\t%41:+ \xff b \r\n")), 2001);
  const Json known = bodyOf(connection.send(inspectAll).receive())[number];
  EXPECT_EQ(known["clientId"], "%41:+ \ufffd b");  // JSON has to be UTF-8.
}

TEST(DevServer, RefusesOrSpoils) {
  const std::string chunked = "POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n";
  const std::tuple<std::string, std::string, Json> cases[] = {
      {"GET / HTTP/1.1\r\n" + std::string(65'519, '\n') + "\r\n", "HTTP/1.1 400", 1009},
      {"POST / HTTP/1.1\r\nContent-Length: 99999\r\n\r\n" + std::string(99999, ' '), "HTTP/1.1 413", 1005},
      {"\x16\x03\x01\r\n\r\n", "HTTP/1.1 400", 1009},
      {chunked + "x\r\n", "HTTP/1.1 400", 1009},
      {chunked + "1;" + std::string(300'000, 'a'), "HTTP/1.1 413", 1005},
      {chunked + "0\r\nX: " + std::string(300'000, 'a'), "HTTP/1.1 413", 1005},
      {"POST / HTTP/1.1\r\nTransfer-Encoding: gzip\r\n\r\n", "HTTP/1.1 501", 1009},
      {"\r\n\r\nGET /x HTTP/1.0\r\nConnection: keep-alive\r\n\r\n", "HTTP/1.0 404", 1006},
      {"GET /" + std::string(70'000, 'a') + " HTTP/1.1\r\n\r\n", "HTTP/1.1 431", 1005},
      {"GET /%00%2g%2 HTTP/1.1\r\n\r\n", "HTTP/1.1 404", 1006},
      {"GET http://other.test/inspect HTTP/1.1\r\nHost: localhost\r\n\r\n", "HTTP/1.1 403", 1010},
      {"GET http://localhost/inspect HTTP/1.1\r\nHost: other.test\r\n\r\n", "HTTP/1.1 200", Json::object()},
      {"CONNECT identity.test:80 HTTP/1.1\r\n\r\n", "HTTP/1.1 403", 1010},
      {callFor("+99900000003"), std::strerror(ECONNRESET), nullptr},
      {callFor("+99900000204"), "HTTP/1.1 200", nullptr},
  };
  IdentityService service;
  const Server server(service, 0, {}, {.lingering = 1min});
  for (const auto& [text, start, code] : cases) {
    SCOPED_TRACE(text.substr(0, 300));
    const std::string reply = Client(server).send(text).receive();
    EXPECT_TRUE(reply.starts_with(start)) << reply;
    EXPECT_EQ(reply.starts_with("HTTP/1.0"), reply.find("Connection: keep-alive") != reply.npos);
    EXPECT_EQ(reply.starts_with("HTTP"), reply.find("\r\n\r\n{") != reply.npos);
    const Json body = bodyOf(reply);
    EXPECT_EQ(body.is_object() ? body.value("code", body) : Json(), code);
  }
}

TEST(DevServer, EndsARequestThatTakesTooLong) {
  IdentityService service;
  const Server server(service, 0, {}, {.idle = 10min, .request = 1ms});
  EXPECT_EQ(Client(server).send("GET").receive(), "");
}

TEST(DevServer, EndsAnIdleConnectionForAnother) {
  IdentityService service;
  const Server server(service, 0, {}, {.connections = 1, .idle = 10min});
  Client first(server);
  EXPECT_EQ(first.codeOf(callFor(number)), 2001);
  EXPECT_EQ(Client(server).codeOf(callFor(number)), 2001);
  EXPECT_EQ(first.receive(), "");
}

TEST(DevServer, TellsOfAMessageAsSoonAsItCame) {
  IdentityService service{{.random = [] { return 0U; }}};
  std::latch held(1), released(1);
  const Server server(service, 0, [&](std::string_view line) {
    if (line.find(" 400 ") == line.npos) return;
    held.count_down();
    released.wait();
  });
  Client script(server), phone(server), malformed(server);
  script.send(awaitMessage);
  service.answer(askPicture(number));
  EXPECT_EQ(phone.codeOf(callFor(number)), 2002);  // Uses up the picture.
  const std::string call = callFor("12345");
  phone.send(call.substr(0, call.size() - 1));
  malformed.send("?\r\n\r\n");  // Holds up the server, so that it learns the rest at once.
  held.wait();
  service.answer(askPicture(number));
  service.answer(askCode(number, "AAAA"));
  script.send("GET");  // The start of the next request.
  phone.send(call.substr(call.size() - 1));
  released.count_down();
  EXPECT_EQ(bodyOf(script.receive())["code"], "000000");
}

TEST(DevServer, ServesAFewConnectionsOfAnotherMachine) {
  const std::vector<std::string> addresses = machineAddresses(false);
  if (addresses.empty()) GTEST_SKIP() << "This machine has only its loopback addresses.";
  const std::string& address = addresses.front();  // Also the caller's: it counts as another machine's.
  IdentityService service;
  const Server server(service, 0, {}, {.connections = 1, .foreignPerPeer = 2}, {.address = "::"});
  Client silent(server, address), idle(server, address);
  silent.send(callFor("+99900000018"));
  EXPECT_EQ(idle.codeOf(callFor(number)), 2001);
  EXPECT_EQ(idle.codeOf(inspectAll), 1008);
  Client here(server);
  EXPECT_EQ(here.codeOf(callFor(number)), 2001);
  Client busy(server, address);  // In place of the idle one.
  busy.send(callFor("+99900000218"));
  EXPECT_EQ(idle.receive(), "");
  while (!service.inspect("+99900000218")) std::this_thread::yield();
  EXPECT_EQ(Client(server, address).receive(), "");  // None is idle.
  EXPECT_EQ(here.codeOf(callFor(number)), 2001);
}

TEST(DevServer, KeepsLateAndSilentAndWaitingConnectionsApart) {
  IdentityService service;
  const Server server(service, 0, {}, {.connections = 1, .parked = 3, .idleWhenCrowded = 60s});
  std::list<Client> parked;
  const auto parks = [&](const std::string& request) {
    parked.emplace_back(server).send(request);
    EXPECT_EQ(Client(server).codeOf(callFor(number)), 2001);  // Answered after that request left its place.
    if (parked.back().isSilent()) return true;
    EXPECT_EQ(bodyOf(parked.back().receive())["code"], 1012);
    parked.pop_back();
    return false;
  };
  const std::string requests[] = {callFor("+999000000016000"), callFor("+99900000018"), awaitMessage};
  for (const std::string& request : requests) EXPECT_TRUE(parks(request)) << request;
  for (const std::string& request : requests) {
    EXPECT_FALSE(parks(request)) << request;
    parked.front().send("GET");  // The start of another request does not hide that the caller leaves.
    parked.pop_front();
    while (!parks(request)) {
    }
  }
}

TEST(DevServer, StopsAtOnce) {
  IdentityService service;
  std::optional<Server> server(std::in_place, service, std::uint16_t{0}, Server::Log(),
                               ServerLimits{.connections = 5, .idle = 10min, .request = 10min});
  Client script(*server);
  script.send(awaitMessage);  // Before the others connect, and so served before them.
  Client fresh(*server), idle(*server), delayed(*server), silent(*server), waiting(*server);
  idle.send(callFor(number)).receive();
  delayed.send(callFor("+99900000001"));
  silent.send(callFor("+99900000018"));
  // Until they are being served.
  while (!service.inspect("+99900000001") || !service.inspect("+99900000018")) std::this_thread::yield();
  server.reset();
  for (Client* connection : {&fresh, &idle, &delayed, &silent, &script}) EXPECT_EQ(connection->receive(), "");
}

TEST(DevServer, StopsAtOnceIfALateCallIsNext) {
  for (const std::string last : {"00000016000", "00000018"}) {
    IdentityService service;
    std::latch meeting(2);
    int lines = 0;
    std::optional<Server> server(std::in_place, service, std::uint16_t{0}, [&](auto) {
      if (++lines > 1) return;
      meeting.arrive_and_wait();
      // The server is most likely told to stop meanwhile, which it then does next.
      for (int turns = 0; turns < 50; ++turns) std::this_thread::yield();
    });
    Client caller(*server);
    caller.send(callFor(number) + callFor("+999" + last));
    meeting.arrive_and_wait();
    server.reset();
  }
}

}  // namespace
}  // namespace devservice
