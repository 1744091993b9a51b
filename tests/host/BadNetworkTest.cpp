// What a session does about a network, a server and a proxy that fall silent or never end.

#include <gtest/gtest.h>
#include <set>
#include <unistd.h>

#include "orvane/host/HostSession.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/perform.h"

namespace orvane::test {
namespace {

using Then = LoopbackServer::Then;
using Answer = LoopbackServer::Answer;
using Request = LoopbackServer::Request;
using std::chrono::milliseconds;

TEST(BadNetwork, AConnectionThatWasIdleForLongIsNotUsedAgain) {
  std::set<int> used;
  LoopbackServer server([&](const Request& request) {  // Silent on a connection after its first reply.
    const bool isFirst = used.insert(request.connection).second;
    return isFirst ? Answer{reply("ok")} : Answer{"", Then::hold};
  });
  LoopbackServer slow([](const Request&) {
    const std::string bytes = reply("");
    return Answer{bytes, Then::keep, "", milliseconds(4100) / bytes.size()};
  });
  HostSession session;
  HostSession other;
  EXPECT_EQ(perform(session, URLRequest(server.url())), "ok");
  EXPECT_EQ(perform(other, URLRequest(slow.url())), "");  // Takes more than four seconds.
  EXPECT_EQ(perform(session, URLRequest(server.url())), "ok");

  HostSession never({.keepAlive = milliseconds(1999)});
  for (int i = 0; i < 3; ++i) EXPECT_EQ(perform(never, URLRequest(server.url())), "ok");
}

TEST(BadNetwork, APeerThatTakesNothingLosesTheConnection) {
  std::uint16_t port = 0;
  const int listener = listenOnLoopback(port);  // Reads nothing.
  HostSession session({.acknowledgementTimeout = milliseconds(100)});
  URLRequest request("http://127.0.0.1:" + std::to_string(port) + "/");
  request.setMethod("POST");
  request.setBody(Bytes(32 << 20));
  EXPECT_EQ(perform(session, request), "error -1005");
  ::close(listener);
}

TEST(BadNetwork, AProxyMayRefuse) {
  LoopbackServer proxy([](const Request&) { return Answer{reply("", "", "403 Forbidden")}; });
  HostSession session({.proxy = proxy.url("")});
  EXPECT_EQ(perform(session, URLRequest("https://name.example/")), "error -1004");
}

TEST(BadNetwork, AProxysRefusalWithoutEndTimesOut) {
  LoopbackServer proxy([](const Request&) {
    return Answer{"HTTP/1.1 407 Authentication Required\r\nContent-Length: 999999999999\r\n\r\n", Then::close,
                  std::string(1 << 16, ' ')};
  });
  // Longer and longer: on a busy machine the request may time out before the proxy has it.
  for (milliseconds limit(100); proxy.requests().empty(); limit *= 2) {
    HostSession session({.idleTimeout = limit, .proxy = proxy.url("")});
    EXPECT_EQ(perform(session, URLRequest("https://name.example/")), "error -1001");
  }
}

}  // namespace
}  // namespace orvane::test
