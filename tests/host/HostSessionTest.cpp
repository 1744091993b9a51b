#include <atomic>
#include <climits>
#include <cstdlib>
#include <curl/curl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <sys/resource.h>
#include <system_error>
#include <tuple>
#include <unistd.h>
#include <zlib.h>

#include "orvane/host/HostSession.h"
#include "tests/host/sentBytes.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/TLSServer.h"
#include "tests/support/allocated.h"
#include "tests/support/entries.h"
#include "tests/support/perform.h"

namespace orvane::test {

// The linker replaces the first function of each pair by the second, so that a test can limit the number of
// threads, and count how often a session waits.
void threadOfTheSystem(std::function<void()> body) __asm__("__real_" START_BACKGROUND_THREAD);
void threadOfTheTest(std::function<void()> body) __asm__("__wrap_" START_BACKGROUND_THREAD);

CURLMcode pollOfCurl(CURLM* multi, curl_waitfd* extra, unsigned count, int timeout,
                     int* ready) __asm__("__real_curl_multi_poll");
CURLMcode pollOfTheTest(CURLM* multi, curl_waitfd* extra, unsigned count, int timeout,
                        int* ready) __asm__("__wrap_curl_multi_poll");

namespace {
std::atomic<int> threadsLeft = INT_MAX;
std::atomic<int> polls = 0;
}  // namespace

void threadOfTheTest(std::function<void()> body) {
  if (threadsLeft == 0)
    throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
  --threadsLeft;
  threadOfTheSystem(std::move(body));
}

CURLMcode pollOfTheTest(CURLM* multi, curl_waitfd* extra, unsigned count, int timeout, int* ready) {
  ++polls;
  return pollOfCurl(multi, extra, count, timeout, ready);
}

namespace {

using Then = LoopbackServer::Then;
using Answer = LoopbackServer::Answer;
using Request = LoopbackServer::Request;
using std::chrono::milliseconds;
using std::chrono::minutes;

std::string deflated(const std::string& text) {
  uLongf size = compressBound(text.size());
  std::string packed(size, '\0');
  compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(text.data()),
           text.size());
  packed.resize(size);
  return packed;
}

URLRequest request(const char* method, const std::string& url, const std::optional<std::string>& body = {}) {
  URLRequest made(url);
  made.setMethod(method);
  if (body) made.setBody(Bytes(body->begin(), body->end()));
  return made;
}

Answer hold(const Request&) {
  return {"", Then::hold};
}

/// Makes so many requests at the same time. Returns each outcome that at least one of them had.
std::set<std::string> performAtOnce(HostSession& session, int count, const std::string& url) {
  std::vector<std::future<TaskOutcome>> outcomes;
  for (int i = 0; i < count; ++i) outcomes.push_back(start(session, URLRequest(url)));
  std::set<std::string> texts;
  for (std::future<TaskOutcome>& outcome : outcomes) texts.insert(outcome.get().text());
  return texts;
}

const std::set<std::string> allGood = {"ok"};

/// A server that answers requests in groups of this size, once a group is complete. Fewer connections than
/// that would never get a reply.
struct GroupServer {
  const int size;
  int waiting = 0;
  LoopbackServer server{[this](const Request&) {
    if (++waiting % size == 0) server.release(reply("ok"));
    return Answer{"", Then::hold};
  }};
};

TEST(HostSession, PutsTheRequestOnTheWireAsItShould) {
  LoopbackServer server([](const Request&) { return Answer{reply("")}; });
  HostSession session({.keepAlive = minutes(1)});
  const std::string large(2 << 20, 'x');
  const std::string binary("\0{}", 3);
  URLRequest put = request("PUT", server.url(), binary);
  put.addValue("text/plain", "Content-Type");
  put.addValue("", "X-Empty");
  put.addValue(" \t", "X-Blank");
  put.addValue("a: b; c", "X-Full");
  const auto head = [&](const std::string& line) {
    return line + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
           "\r\nUser-Agent: Orvane/1.0\r\nAccept: */*";
  };
  const std::string form = "\r\nContent-Length: 2097152\r\nContent-Type: application/x-www-form-urlencoded\n";
  const std::pair<URLRequest, std::string> rows[] = {
      {URLRequest(server.url("/a/../b?c=%20&d=é一#fragment")),
       head("GET /a/../b?c=%20&d=%C3%A9%E4%B8%80") + "\n"},
      {request("HEAD", server.url(), "ignored"), head("HEAD /") + "\n"},
      {request("DELETE", server.url()), head("DELETE /") + "\n"},
      {request("POST", server.url()), head("POST /") + "\r\nContent-Length: 0\n"},
      {request("POST", server.url(), ""), head("POST /") + "\r\nContent-Length: 0\n"},
      {request("POST", server.url(), large), head("POST /") + form + large},
      {put, head("PUT /") + "\r\nContent-Type: text/plain\r\nX-Empty:\r\nX-Blank:\r\nX-Full: a: b; c" +
                "\r\nContent-Length: 3\n" + binary}};
  for (const auto& [made, expected] : rows) {
    EXPECT_EQ(perform(session, made), "");
    const std::string sent = sentBytes(server.requests().back());
    EXPECT_TRUE(sent == expected) << sent.substr(0, 400) << "\n instead of\n" << expected.substr(0, 400);
  }
  EXPECT_EQ(server.requests().back().connection, 1);
}

TEST(HostSession, RefusesURLsBeforeAnythingIsSent) {
  LoopbackServer server([](const Request&) { return Answer{reply("ok")}; });
  HostSession session;
  EXPECT_EQ(perform(session, URLRequest(server.url())), "ok");  // To a URL that is not sent again.
  const std::pair<const char*, std::vector<std::string>> groups[] = {
      {"NSURLErrorDomain (-1002)",  // The scheme.
       {"", "h/p", "//127.0.0.1/", "ftp://127.0.0.1/", "file:///etc/passwd", "httpx://h/"}},
      {"NSURLErrorDomain (-1000)",  // No host, or not a URL.
       {"http:///p", "http:p", "http://:80/", "http://a b/", "http://a/\t", {"http://127.0.0.1:1/\0", 20}}}};
  for (const auto& [expected, urls] : groups) {
    for (const std::string& url : urls) {
      SCOPED_TRACE(url);
      const ErrorPtr error = start(session, URLRequest(url)).get().result.error;
      ASSERT_TRUE(error);
      EXPECT_EQ(errorDescription(*error), expected);
      EXPECT_EQ(*error->userInfo.at("NSErrorFailingURLStringKey").string(), url);
    }
  }
  EXPECT_EQ(server.requests().size(), 1U);
}

TEST(HostSession, RefusesARequestThatIsTooLarge) {
  LoopbackServer server([](const Request& request) {
    return Answer{reply(request.head.size() > 256U << 10 ? "whole" : "cut")};
  });
  HostSession session;
  for (const auto& [more, expected] : {std::pair(0U, "whole"), std::pair(1U, "error -1")}) {
    URLRequest request(server.url());
    request.addValue(std::string((256U << 10) - server.url().size() - 1 + more, 'x'), "X");
    EXPECT_EQ(perform(session, request), expected);
  }
}

TEST(HostSessionDeathTest, StopsWithALineForWantOfMemory) {
  EXPECT_DEATH(
      {
        HostSession session;
        std::promise<void> never;
        session.startDataTask(URLRequest("nowhere"), [](const auto&) { throw std::bad_alloc(); });
        never.get_future().wait();
      },
      "orvane: HostSession: there is not enough memory\n");
}

TEST(HostSession, HandsOverWholeBodiesUpToTheirLimit) {
  const auto header = [](std::size_t size) {
    std::string lines;
    for (const char* name : {"X: ", "Y: "}) lines.append(name).append(99 << 10, 'x').append("\r\n");
    lines.append("Z: ").append(size - lines.size() - reply("", "\r\n").size(), 'x').append("\r\n");
    return reply("", lines);
  };
  const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  std::string full;
  while (full.size() < 1 << 20) full += std::to_string(full.size());
  full.resize(1 << 20);
  const std::pair<std::string, std::string> rows[] = {
      {"HTTP/1.1 100 Continue\r\n\r\n" + reply("after"), "after"},
      {chunked + "2\r\nab\r\n1\r\nc\r\n0\r\nHTTP/1.1: a trailer\r\n\r\n", "abc"},
      {reply(deflated(full), "Content-Encoding: deflate\r\n"), full},
      {reply(full), full},
      {reply(full + "x"), "error -1103"},
      {header(256 << 10), ""},
      {header((256 << 10) + 1), "error -1103"}};
  LoopbackServer server;
  HostSession session({.maximumBodySize = 1 << 20});
  for (const auto& [bytes, expected] : rows) {
    server.setScript([answer = Answer{bytes}](const Request&) { return answer; });
    const std::string outcome = perform(session, URLRequest(server.url()));
    EXPECT_TRUE(outcome == expected) << bytes.substr(0, 60) << " became " << outcome.substr(0, 60);
  }
  server.setScript(
      [](const Request&) { return Answer{"HTTP/1.1 200 OK\r\nContent-Length: 9999999\r\n\r\n"}; });
  EXPECT_EQ(perform(session, request("HEAD", server.url())), "");
}

TEST(HostSession, KeepsFewIdleHandles) {
  constexpr int count = 60;
  constexpr std::size_t lessThanOneHandle = 5 << 10;
  GroupServer group{count};
  HostSession session({.keepAlive = milliseconds(1), .connectionsPerHost = count});  // Keeps no connection.
  const std::size_t before = allocated();
  EXPECT_EQ(performAtOnce(session, count, group.server.url()), allGood);
  EXPECT_TRUE(session.waitUntilIdle(minutes(1)));
  EXPECT_LE(allocated(), before + count * lessThanOneHandle);
}

TEST(HostSession, IgnoresTheProxyOfTheEnvironment) {
  ::setenv("http_proxy", "http://127.0.0.1:1/", 1);
  LoopbackServer server([](const Request&) { return Answer{reply("direct")}; });
  HostSession session;
  EXPECT_EQ(perform(session, URLRequest(server.url())), "direct");
  ::unsetenv("http_proxy");
}

TEST(HostSession, FollowsRedirects) {
  LoopbackServer server([](const Request& request) {
    const std::string target = request.head.substr(request.head.find(' ') + 1);
    const int left = std::atoi(target.c_str() + 1);
    if (target.starts_with("/space"))
      return Answer{reply("", "Location: http://to.example/0 a?b c\r\n", "302 Found")};
    if (left == 0) return Answer{reply(request.head.substr(0, request.head.find(' ')) + " " + request.body)};
    const std::string status = target.substr(target.find('?') + 1, 3);
    const std::string next = std::to_string(left - 1) + "?" + status;
    return Answer{reply("moved", "Location: /" + next + "\r\n", status + " Moved")};
  });
  HostSession session({.reroutes = {{"to.example", 80, "127.0.0.1", server.port()}}});
  EXPECT_EQ(perform(session, request("POST", server.url("/1?302"), "body")), "GET ");
  EXPECT_EQ(perform(session, request("POST", server.url("/20?308"), "body")), "POST body");
  EXPECT_EQ(perform(session, request("POST", server.url("/21?308"), "body")), "error -1007");
  EXPECT_EQ(perform(session, URLRequest(server.url("/space"))), "GET ");
  EXPECT_TRUE(server.requests().back().head.starts_with("GET /0%20a?b%20c HTTP/1.1\r\n"));
}

TEST(HostSession, GivesUpInTimeAndSleepsTillThen) {
  LoopbackServer server([](const Request& request) {
    return request.head.starts_with("GET /good") ? Answer{reply("ok")} : Answer{"", Then::hold};
  });
  const HostSessionConfiguration idle{.idleTimeout = milliseconds(300), .connectionsPerHost = 1};
  const HostSessionConfiguration total{.totalTimeout = milliseconds(300), .connectionsPerHost = 1};
  polls = 0;
  for (const HostSessionConfiguration& configuration : {idle, total}) {
    HostSession session(configuration);
    std::future<TaskOutcome> transferring = start(session, URLRequest(server.url()));
    std::future<TaskOutcome> waiting = start(session, URLRequest(server.url()));
    for (int i = 0; i < 20; ++i) perform(session, URLRequest("nowhere"));  // Each wakes the session.
    EXPECT_EQ(transferring.get().text(), "error -1001");
    EXPECT_EQ(waiting.get().text(), "error -1001");
  }
  EXPECT_LT(polls, 200) << "The session spins where it should sleep.";
  HostSession clamped({.idleTimeout = milliseconds::max(),
                       .totalTimeout = milliseconds::max(),
                       .acknowledgementTimeout = milliseconds::max(),
                       .keepAlive = milliseconds::max(),
                       .connectionsPerHost = 0,
                       .maximumConnections = 0});
  EXPECT_EQ(perform(clamped, URLRequest(server.url("/good"))), "ok");
  EXPECT_TRUE(clamped.waitUntilIdle(milliseconds::max()));
}

TEST(HostSession, ServesFirstWhatCameFirst) {
  std::promise<void> allStarted;
  LoopbackServer server([&, started = allStarted.get_future().share()](const Request& request) {
    started.wait();
    const bool isFirst = request.head.starts_with("GET /first ");
    return Answer{isFirst ? reply("", "Location: http://other.example/again\r\n", "302 Elsewhere")
                          : reply("")};
  });
  HostSession session(
      {.maximumConnections = 1, .reroutes = {{"other.example", 80, "127.0.0.1", server.port()}}});
  std::vector<std::future<TaskOutcome>> outcomes;
  for (const std::string& url : {server.url("/first"), std::string("http://other.example/second"),
                                 server.url("/third"), std::string("http://other.example/fourth")})
    outcomes.push_back(start(session, URLRequest(url)));
  allStarted.set_value();
  for (std::future<TaskOutcome>& outcome : outcomes) EXPECT_EQ(outcome.get().text(), "");
  std::string paths;
  for (const Request& request : server.requests())
    paths += request.head.substr(4, request.head.find(" HTTP") - 4);
  EXPECT_EQ(paths, "/first/again/second/third/fourth");
}

TEST(HostSession, ASlowHandlerLosesNoReply) {
  LoopbackServer silent(hold);
  std::string late;
  // Longer and longer: on a busy machine the request may time out before the handler is called.
  for (milliseconds limit(100); late != "ok" && limit < minutes(1); limit *= 2) {
    HostSession session({.idleTimeout = limit}), silenced({.idleTimeout = limit}), other;
    std::promise<void> called;
    LoopbackServer server([&](const Request& request) {
      if (request.head.starts_with("GET /late ")) {
        session.startDataTask(URLRequest("nowhere"), [&](const auto&) {
          called.set_value();
          EXPECT_EQ(perform(other, URLRequest(server.url())), "ok");  // After the late reply.
          perform(silenced, URLRequest(silent.url()));                // Takes the idle time-out.
        });
        called.get_future().wait();
      }
      return Answer{reply("ok")};
    });
    late = perform(session, URLRequest(server.url("/late")));
    EXPECT_EQ(perform(other, URLRequest(server.url())), "ok");  // The server has seen all requests by then.
    EXPECT_TRUE(session.waitUntilIdle(minutes(1)));
  }
  EXPECT_EQ(late, "ok");
}

TEST(HostSession, SendsNothingThatIsOverdue) {
  LoopbackServer server([](const Request&) { return Answer{reply("ok")}; });
  LoopbackServer silent(hold);
  HostSession session({.totalTimeout = milliseconds(20)});
  HostSession other({.idleTimeout = milliseconds(40)}), unhurried;
  std::promise<void> begun, isStarted;
  session.startDataTask(URLRequest("nowhere"), [&](const auto&) {
    begun.set_value();
    isStarted.get_future().wait();
    EXPECT_EQ(perform(other, URLRequest(silent.url())), "error -1001");  // Takes longer than the next may.
  });
  begun.get_future().wait();
  std::future<TaskOutcome> overdue = start(session, URLRequest(server.url()));
  isStarted.set_value();
  EXPECT_EQ(overdue.get().text(), "error -1001");
  EXPECT_EQ(perform(unhurried, URLRequest(server.url())), "ok");
  EXPECT_EQ(server.requests().size(), 1U);
  EXPECT_EQ(server.requests().back().connection, 1) << "There was a connection before.";
}

TEST(HostSession, AHandlerMayDestroyItsSession) {
  for (int i = 0; i < 2000; ++i) {
    std::promise<void> destroyed;
    auto* const session = new HostSession;
    session->startDataTask(URLRequest("nowhere"), [&](const auto&) {
      delete session;
      destroyed.set_value();
    });
    destroyed.get_future().wait();
  }
}

TEST(HostSession, WaitsUntilNoTaskIsLeft) {
  HostSession session;
  EXPECT_TRUE(session.waitUntilIdle(minutes(1)));
  std::promise<void> begun, goOn;
  bool hasReturned = false;
  session.startDataTask(URLRequest("nowhere"), [&](const auto&) {
    begun.set_value();
    goOn.get_future().wait();
  });
  begun.get_future().wait();
  session.startDataTask(URLRequest("nowhere"), [&](const auto&) { session.cancelAllOperations(); });
  session.startDataTask(URLRequest("nowhere"), [](const auto&) { ADD_FAILURE() << "cancelled before"; });
  EXPECT_FALSE(session.waitUntilIdle(milliseconds(1)));
  goOn.set_value();
  EXPECT_TRUE(session.waitUntilIdle(minutes(1)));
  session.startDataTask(URLRequest("nowhere"), [&](const auto&) { hasReturned = true; });
  EXPECT_TRUE(session.waitUntilIdle(minutes(1)));
  EXPECT_TRUE(hasReturned);
}

TEST(HostSession, RecoversFromAWantOfDescriptors) {
  LoopbackServer server([](const Request&) { return Answer{reply("ok")}; });
  HostSession session;
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  const rlimit none{0, before.rlim_max};
  setrlimit(RLIMIT_NOFILE, &none);
  EXPECT_EQ(perform(session, URLRequest(server.url())), "error -1004");
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(perform(session, URLRequest(server.url())), "ok");
}

TEST(HostSession, HasOneThread) {
  LoopbackServer server([](const Request&) { return Answer{reply("ok")}; });
  HostSession session;
  threadsLeft = 0;
  EXPECT_THROW(perform(session, URLRequest(server.url())), std::system_error);
  EXPECT_TRUE(session.waitUntilIdle(minutes(1)));
  threadsLeft = 9;
  EXPECT_EQ(performAtOnce(session, 20, server.url()), allGood);
  EXPECT_EQ(threadsLeft.exchange(INT_MAX), 8);
}

TEST(HostSession, SharesItsConnectionsAmongHosts) {
  constexpr std::size_t hosts = 100;
  constexpr std::size_t limit = 8;
  GroupServer group{limit};
  HostSessionConfiguration configuration{.connectionsPerHost = 1, .maximumConnections = limit};
  for (std::size_t i = 0; i < hosts; ++i)
    configuration.reroutes.push_back({"host" + std::to_string(i), 80, "127.0.0.1", group.server.port()});
  HostSession session(configuration);
  const auto descriptors = [] { return static_cast<std::size_t>(entries("/proc/self/fd")); };
  const std::size_t before = descriptors();
  std::size_t most = 0;
  std::atomic<std::size_t> good = 0;
  std::promise<void> all;
  for (std::size_t i = 0; i < 2 * hosts; ++i) {
    session.startDataTask(URLRequest("http://HOST" + std::to_string(i % hosts)), [&](const auto& result) {
      most = std::max(most, descriptors());
      if (!result.error && ++good == 2 * hosts) all.set_value();
    });
  }
  all.get_future().wait();
  EXPECT_LE(most, before + 2 * limit + 6);  // Both ends are here.
}

TEST(HostSession, UsesSixConnectionsAtATimeAndKeepsThem) {
  GroupServer group{6};
  HostSession session({.keepAlive = minutes(1)});
  EXPECT_EQ(performAtOnce(session, 60, group.server.url()), allGood);
  std::set<int> connections;
  for (const Request& request : group.server.requests()) connections.insert(request.connection);
  EXPECT_EQ(connections.size(), 6U);
}

TEST(HostSession, NeverSendsAPostTwiceByItself) {
  for (const auto& [method, expected] : {std::pair("POST", "error -1005"), std::pair("GET", "ok")}) {
    SCOPED_TRACE(method);
    LoopbackServer server([](const Request& request) {
      const bool isLost = request.connection == 1 && request.head.find("/second") != request.head.npos;
      return isLost ? Answer{"", Then::close} : Answer{reply("ok")};
    });
    HostSession session(
        {.keepAlive = minutes(1), .reroutes = {{"name.example", 80, "127.0.0.1", server.port()}}});
    EXPECT_EQ(perform(session, URLRequest("http://name.example/first")), "ok");
    EXPECT_EQ(perform(session, request(method, "http://name.example/second")), expected);
    EXPECT_EQ(server.requests().size(), std::string_view(method) == "POST" ? 2U : 3U);
    EXPECT_TRUE(server.requests().back().hasLine("Host: name.example"));
    EXPECT_EQ(perform(session, URLRequest("http://name.example/third")), "ok");
    EXPECT_EQ(server.requests().back().connection, 2);  // No connection was made in vain.
  }
}

TEST(HostSession, KeepsCookiesToItselfAndWithinBounds) {
  int fresh = 0;
  LoopbackServer server([&](const Request& request) {
    std::string cookies = "Set-Cookie: a=b\r\n";
    for (int i = 0; i < 45 && request.head.starts_with("GET /many"); ++i)
      cookies += "Set-Cookie: c" + std::to_string(++fresh) + "=d\r\n";
    for (int i = 0; i < 33 && request.head.starts_with("GET /large"); ++i)
      cookies += "Set-Cookie: l" + std::to_string(++fresh) + "=" + std::string(4000, 'd') + "\r\n";
    const bool isHeld = request.head.starts_with("GET /hold");
    return isHeld ? Answer{"", Then::hold} : Answer{reply("", cookies)};
  });
  HostSession session;
  HostSession other;
  const auto cookieLine = [&](HostSession& by, const char* path) {
    URLRequest request(server.url(path));
    request.addValue("own=1", "cookie");
    EXPECT_EQ(perform(by, request), "");
    std::string head = server.requests().back().head + "\r\n";
    head.erase(0, head.find("\r\nCookie: ") + 2);
    EXPECT_EQ(head.find("ookie: ", 2), head.npos);  // One line alone.
    return head.substr(0, head.find("\r\n"));
  };
  EXPECT_EQ(cookieLine(session, "/"), "Cookie: own=1");
  session.startDataTask(URLRequest(server.url("/hold")), nullptr);  // Later requests use another connection.
  while (server.requests().size() < 2) std::this_thread::yield();
  for (int i = 0; i < 400; ++i) EXPECT_EQ(cookieLine(session, "/"), "Cookie: a=b; own=1");
  int emptied = 0;
  for (int i = 0; i < 8; ++i) emptied += cookieLine(session, "/many") == "Cookie: own=1" ? 1 : 0;
  EXPECT_EQ(emptied, 1);
  for (int i = 0; i < 2; ++i) cookieLine(session, "/large");
  EXPECT_EQ(cookieLine(session, "/"), "Cookie: own=1");
  EXPECT_EQ(cookieLine(other, "/"), "Cookie: own=1");
}

TEST(HostSession, ChecksCertificates) {
  const std::string name = "service.example";
  const std::string file = testing::TempDir() + "authority-" + std::to_string(::getpid()) + ".pem";
  const Certificate authority("authority");
  authority.write(file);
  const Certificate stranger("stranger");
  const Certificate good(name, &authority), expired(name, &authority, -2, -1), early(name, &authority, 1, 2);
  const Certificate wrongName("other.example", &authority), selfSigned(name), strange(name, &stranger);
  const std::string ofTheSystem;
  const char* const untrusted = "The server's certificate is not trusted.";
  const char* const unknown = "The server's certificate is from an unknown authority.";
  const char* const unreadable = "The trusted certificate authorities could not be read.";
  const std::tuple<const char*, const Certificate*, std::string, const char*> rows[] = {
      {"good", &good, file, "ok"},
      {"unknown to the system", &good, ofTheSystem, unknown},
      {"no file", &good, file + ".absent", unreadable},
      {"another file", &good, ERRORS_PAGE, unreadable},
      {"expired", &expired, file, "The server's certificate has expired."},
      {"early", &early, file, "The server's certificate is not valid yet."},
      {"wrong name", &wrongName, file, untrusted},
      {"self-signed", &selfSigned, file, untrusted},
      {"stranger", &strange, file, unknown},
      {"none", nullptr, file, "A secure connection to the server could not be made."}};
  for (const auto& [what, certificate, authorities, expected] : rows) {
    const TLSServer server(certificate, reply("ok"));
    HostSession session(
        {.reroutes = {{name, 443, "127.0.0.1", server.port()}}, .certificateAuthorities = authorities});
    const TaskOutcome outcome = start(session, URLRequest("https://" + name + "/")).get();
    const ErrorPtr& error = outcome.result.error;
    EXPECT_EQ(error ? *error->userInfo.at("NSLocalizedDescription").string() : outcome.text(), expected)
        << what;
  }
  const Certificate forProxy("localhost", &authority);
  const TLSServer proxy(&forProxy, reply("by the proxy"));
  HostSession proxied(
      {.proxy = "https://localhost:" + std::to_string(proxy.port()), .certificateAuthorities = file});
  EXPECT_EQ(perform(proxied, URLRequest("http://" + name + "/")), "by the proxy");
  std::filesystem::remove(file);
}

}  // namespace
}  // namespace orvane::test
