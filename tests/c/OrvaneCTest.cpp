// The calls from C: a program in C makes them, on real connections.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include "tests/support/LoopbackServer.h"
#include "tests/support/spawn.h"

namespace orvane::test {
namespace {

Ended runCalls(const std::string& address, const std::string& call, int times = 1) {
  return run({CALLS_PROGRAM, address, call, std::to_string(times)});
}

TEST(OrvaneC, ReportsEachOutcomeOnTheEventLoopAndThenReleases) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"picture", R"({"code":0,"data":[104,105]})", "hi of 2\n"},
      {"picture", R"({"code":0,"data":[]})", " of 0\n"},
      {"picture", R"({"code":7,"msg":"Busy"})", " of 0, 0 7 Busy, Busy\n"},
      {"picture", R"({"code":0})", " of 0, 5 -1 com.brovent.error, The service's reply could not be read.\n"},
      {"code", R"({"code":0})", "code\n"},
      {"code", "not JSON", "code, 5 -1 com.brovent.error, The service's reply could not be read.\n"},
      {"login", R"({"code":0,"msg":"Welcome"})", "Welcome\n"},
      {"login", R"({"code":9,"msg":"No"})", "No, 0 1 No, No\n"},
      {"login", nullptr,
       "words for NSURLErrorDomain -1005, 2 -1005 NSURLErrorDomain, "
       "words for NSURLErrorDomain -1005\n"}};
  for (const auto& [call, body, expected] : rows) {
    SCOPED_TRACE(expected);
    LoopbackServer server([body = body](const LoopbackServer::Request& request) {
      EXPECT_TRUE(request.hasLine("XRAPI-CLIENT-ID: from C"));
      return body ? LoopbackServer::Answer{reply(body)}
                  : LoopbackServer::Answer{"", LoopbackServer::Then::close};
    });
    const Ended ended = runCalls(server.url(), call);
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output + ended.errors, expected);
    // With one request before, which has no callback, and one after an accepted login.
    EXPECT_EQ(server.requests().size(), std::string_view(expected) == "Welcome\n" ? 3U : 2U);
  }
}

TEST(OrvaneC, AThousandCallsLoseNoneAndLeakNothing) {
  LoopbackServer server([](const auto&) { return LoopbackServer::Answer{reply(R"({"code":0})")}; });
  const Ended ended = runCalls(server.url(), "code", 1000);
  EXPECT_EQ(ended.status, 0) << ended.errors;
  EXPECT_EQ(server.requests().size(), 1001U);
}

TEST(OrvaneC, MistakesStopTheProcessWithALine) {
  LoopbackServer server([](const auto&) { return LoopbackServer::Answer{reply(R"({"code":0})")}; });
  const std::tuple<const char*, std::string, const char*> rows[] = {
      {"null", server.url(), "orvane_request_code: a string is null"},
      {"not UTF-8", server.url(), "orvane_request_login: a string is not UTF-8"},
      {"unprepared", server.url(), "orvane_set_client_id: orvane_prepare() was not called"},
      {"no post", server.url(), "orvane_prepare: there is no function that posts"},
      {"prepared twice", server.url(), "orvane_prepare: called again"},
      {"code", "own.example", "ReaddressedSession: the address does not begin with http:// or https://"}};
  for (const auto& [call, address, line] : rows) {
    const Ended ended = runCalls(address, call);
    EXPECT_TRUE(WIFSIGNALED(ended.status) && WTERMSIG(ended.status) == SIGABRT) << call;
    EXPECT_EQ(ended.errors, "orvane: " + std::string(line) + "\n");
  }
}

}  // namespace
}  // namespace orvane::test
