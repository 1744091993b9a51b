#include <gtest/gtest.h>

#include "orvane/json/writeJSON.h"
#include "orvane/network/NetWorkManager.h"
#include "orvane/network/NetworkTool.h"
#include "tests/support/TestPlatform.h"
#include "tests/support/asText.h"

namespace orvane::test {
namespace {

/// Returns the request as "METHOD URL [BODY] NAME=VALUE ...".
std::string text(const std::optional<URLRequest>& request) {
  if (!request) return "none";
  std::string line = request->method() + " " + request->url();
  if (request->body()) line += " [" + asText(request->body()) + "]";
  for (const auto& [name, value] : request->headers()) line += " " + name + "=" + value;
  return line;
}

/// A tool on a session of the test's own.
class NetworkToolTest : public OnFakes {
 protected:
  NetworkToolTest() { tool.setSession(session); }

  /// Makes a call. Its completion notes what it receives, and where.
  void start(const char* url = "http://h/") {
    tool.requestJSON(HTTPMethod::JSON_POST, url, std::nullopt,
                     [this](const std::optional<Value>& result, const ErrorPtr& error) {
                       if (result) received += asText(writeJSON(*result));
                       if (error) received += errorDescription(*error);
                       if (error && error->userInfo.size() == 1)
                         received += *error->userInfo.at("error").string();
                       received += std::this_thread::get_id() == testThread ? " here" : " in the background";
                     });
  }

  std::shared_ptr<FakeSession> session = std::make_shared<FakeSession>();
  const std::thread::id testThread = std::this_thread::get_id();
  NetworkTool tool;
  std::string received;
};
using NetworkToolDeathTest = NetworkToolTest;

TEST_F(NetworkToolTest, BuildsRequestsByKind) {
  using enum HTTPMethod;
  const std::tuple<HTTPMethod, const char*, std::optional<Parameters>, const char*> rows[] = {
      {GET, "http://h/p", std::nullopt, "GET http://h/p"},
      {GET, "http://h/p", Parameters{}, "GET http://h/p?"},
      {GET, "http://h/p?a=b", Parameters{{"k", "v"}, {"l", "w"}}, "GET http://h/p?a=b?k=v&l=w"},
      {GET, "", Parameters{{"k", "v"}}, "none"},
      {POST, "http://h/p", Parameters{{"k", "v x"}}, "POST http://h/p [k=v%20x]"},
      {POST, "http://h/p", Parameters{}, "POST http://h/p []"},
      {POST, "http://h/p", std::nullopt, "none"},
      {JSON_POST, "http://h/p", std::nullopt, "POST http://h/p"},
      {JSON_POST, "http://h/p", Parameters{}, "POST http://h/p"},
      {JSON_POST, "http://h/p", Parameters{{"k", Array{1, 2.5, "\"", nullptr, true}}},
       R"(POST http://h/p [{"k":[1,2.5,"\"",null,true]}])"}};
  for (const auto& [method, url, parameters, request] : rows) {
    EXPECT_EQ(fromRawValue<HTTPMethod>(rawValue(method)), method);
    EXPECT_EQ(text(tool.request(method, url, parameters)), request) << rawValue(method) << " " << url;
  }
}

TEST_F(NetworkToolTest, StoresTheLastHeaderSetThatIsNotEmpty) {
  const std::pair<Headers, const char*> steps[] = {
      {{{"A", "1"}, {"B", "2"}}, "GET u A=1 B=2"}, {{{"C", ""}}, "GET u C="}, {{}, "GET u C="}};
  for (const auto& [headers, request] : steps) {
    tool.addHeader(headers);
    EXPECT_EQ(text(tool.request(HTTPMethod::GET, "u", std::nullopt)), request);
  }
  EXPECT_EQ(text(tool.request(HTTPMethod::POST, "", std::nullopt)), "none");
}

TEST_F(NetworkToolTest, EncodesTheValuesOfAQueryAndLeavesItsKeys) {
  EXPECT_EQ(tool.queryString(std::nullopt), std::nullopt);
  const std::pair<Parameters, std::string> rows[] = {{{}, ""},
                                                     {{{"a key&", ""}}, "a key&="},
                                                     {{{"a", "azAZ09"}, {"b", "-._~ &=+%/\"\x7F\x01"}},
                                                      "a=azAZ09&b=%2D%2E%5F%7E%20%26%3D%2B%25%2F%22%7F%01"},
                                                     {{{"k", "中a文 😀€"}}, "k=中a文%20%F0%9F%98%80%E2%82%AC"},
                                                     {{{"k", std::string_view("\0", 1)}}, "k=%00"}};
  for (const auto& [parameters, query] : rows) EXPECT_EQ(tool.queryString(parameters), query);
}

TEST_F(NetworkToolTest, ReportsEachFailureWhereItIsFound) {
  start("");
  EXPECT_EQ(std::exchange(received, ""), "com.brovent.error (-1)请求建立失败 here");
  EXPECT_TRUE(session->requests.empty());
  const std::pair<DataTaskResult, std::string> rows[] = {
      {failed({"any", -7, {}}), "any (-7) in the background"},
      {replied("7"), "com.brovent.error (-1)反序列化失败 in the background"}};
  for (const auto& [result, outcome] : rows) {
    start();
    session->answer(result);
    EXPECT_EQ(std::exchange(received, ""), outcome);
  }
}

TEST_F(NetworkToolTest, HandsOverTheDecodedReplyOnTheMainQueue) {
  for (const char* body : {"{}", "[]"}) {
    start();
    DataTaskResult reply = replied(body);
    reply.response->statusCode = 500;
    session->answer(reply);
    EXPECT_EQ(received, "");
    EXPECT_EQ(fakeMainQueue().runPending(), 1U);
    EXPECT_EQ(std::exchange(received, ""), std::string(body) + " here");
  }
}

TEST_F(NetworkToolTest, KeepsTheCompletionAndNothingOfTheTool) {
  const auto capture = std::make_shared<int>();
  {
    NetworkTool shortLived;
    shortLived.setSession(session);
    shortLived.requestJSON(HTTPMethod::GET, "http://h/", std::nullopt,
                           [capture](const auto&...) { ++*capture; });
  }
  session->answer("{}");
  EXPECT_EQ(capture.use_count(), 2);
  fakeMainQueue().runPending();
  EXPECT_EQ(*capture, 1);
  EXPECT_EQ(capture.use_count(), 1);
}

TEST_F(NetworkToolTest, GoesThroughItsOverridableOperations) {
  struct : NetworkTool {
    std::optional<std::string> queryString(const std::optional<Parameters>&) override { return "own"; }
    std::shared_ptr<URLSession> session() override { return own; }
    std::shared_ptr<FakeSession> own = std::make_shared<FakeSession>();
  } overriding;
  overriding.requestJSON(HTTPMethod::GET, "http://h/", std::nullopt, nullptr);
  overriding.requestJSON(HTTPMethod::POST, "http://h/", std::nullopt, nullptr);
  ASSERT_EQ(overriding.own->requests.size(), 2U);
  EXPECT_EQ(text(overriding.own->requests[0]), "GET http://h/?own");
  EXPECT_EQ(text(overriding.own->requests[1]), "POST http://h/ [own]");
  overriding.own->answer("");  // The completion is empty.
  overriding.cancleAllNetwork();
  EXPECT_EQ(overriding.own->cancellations, 1);
}

TEST_F(NetworkToolTest, UsesThePlatformsSessionUntilItHasAnother) {
  NetworkTool fresh;
  fresh.cancleAllNetwork();
  EXPECT_EQ(fakeSession().cancellations, 1);
  fresh.setSession(nullptr);
  EXPECT_EQ(fresh.session(), nullptr);
  fresh.cancleAllNetwork();
  EXPECT_EQ(fakeSession().cancellations, 1);
  NetworkManager::sharedManager().cancleAllNetwork();
  EXPECT_EQ(fakeSession().cancellations, 2);
}

TEST_F(NetworkToolDeathTest, StopsOnProgrammingErrorsAndNamesNoArgument) {
  using enum HTTPMethod;
  const auto stop = [](const std::string& reason) { return "^orvane: " + reason + "\n$"; };
  const std::string notURL = stop("request: the text given as URL is not a URL");
  const Parameters blankKey = {{"a b", "v"}}, number = {{"k", 7}}, notUTF8 = {{"k", "\xC3"}};
  EXPECT_DEATH(tool.request(GET, "u", blankKey), notURL);
  EXPECT_DEATH(tool.request(POST, "a b", blankKey), notURL);
  EXPECT_DEATH(tool.request(JSON_POST, "a b", blankKey), notURL);
  EXPECT_DEATH(tool.request(JSON_POST, "u", notUTF8),
               stop("request: the parameters cannot be represented in JSON"));
  EXPECT_DEATH(tool.request(GET, "u", number), stop("queryString: a parameter's value is not a string"));
  EXPECT_DEATH(tool.queryString(notUTF8), stop("queryString: a parameter's value is not UTF-8"));
  start();
  EXPECT_DEATH(session->answer(DataTaskResult{}),
               stop("requestJSON: the session reported neither a body nor an error"));
  tool.addHeader({{"A", "1"}});
  EXPECT_DEATH(tool.request(POST, "u", std::nullopt),
               stop("request: a POST without parameters has no request to put the headers into"));
  tool.setSession(nullptr);
  EXPECT_DEATH(start(), stop("requestJSON: the tool has no session"));
}

}  // namespace
}  // namespace orvane::test
