// The calls from C: a program in C makes them, on real connections.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include "tests/support/LoopbackServer.h"
#include "tests/support/spawn.h"

namespace orvane::test {
namespace {

TEST(OrvaneC, ReportsEachOutcomeOnTheEventLoopAndThenReleases) {
  const std::tuple<const char*, const char*, std::string> rows[] = {
      {"picture", R"({"code":0,"data":[104,105]})", "hi of 2\n"},
      {"picture", R"({"code":0,"data":[]})", " of 0\n"},
      {"picture", R"({"code":7,"msg":"Busy"})", " of 0, 0 7 Busy, Busy\n"},
      {"picture", R"({"code":0})", " of 0, 5 -1 com.brovent.error, The service's reply could not be read.\n"},
      {"picture", nullptr, " of 0, 2 -1005 NSURLErrorDomain, The connection to the server was lost.\n"},
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
    const Ended ended = run({CALLS_PROGRAM, server.url(), call});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.errors, expected + expected + expected);
    // One without a callback, the three calls, and the reports after accepted logins.
    EXPECT_EQ(server.requests().size(), expected == "Welcome\n" ? 7U : 4U);
  }
}

TEST(OrvaneC, MistakesStopTheProcessWithALine) {
  const char* const closed = "http://127.0.0.1:1";
  const std::tuple<const char*, const char*, std::string> rows[] = {
      {"null", closed, "orvane_request_code: a string is null"},
      {"not UTF-8", closed, "orvane_request_login: a string is not UTF-8"},
      {"unprepared", closed, "orvane_set_client_id: orvane_prepare() was not called"},
      {"no post", closed, "orvane_prepare: there is no function that posts"},
      {"prepared twice", closed, "orvane_prepare: called again"},
      {"code", "own.example", "ReaddressedSession: the address does not begin with http:// or https://"}};
  for (const auto& [call, address, line] : rows) {
    const Ended ended = run({CALLS_PROGRAM, address, call});
    EXPECT_TRUE(WIFSIGNALED(ended.status) && WTERMSIG(ended.status) == SIGABRT) << call;
    EXPECT_EQ(ended.errors, "orvane: " + line + "\n");
  }
}

}  // namespace
}  // namespace orvane::test
