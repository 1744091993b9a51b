#include <gtest/gtest.h>

#include "orvane/network/NetWorkManager.h"
#include "orvane/network/NetworkTool.h"
#include "tests/support/TestPlatform.h"

namespace orvane::test {
namespace {

std::string text(const std::optional<Bytes>& body) {
  return body ? std::string(body->begin(), body->end()) : "no body";
}

std::string headerLines(const URLRequest& request) {
  std::string lines;
  for (const auto& [name, value] : request.headers()) lines += name + ": " + value + "\n";
  return lines;
}

/// A tool on a session of the test's own, and what its last call came to.
class NetworkToolTest : public OnFakes {
 protected:
  NetworkToolTest() { tool.setSession(session); }

  void start(const char* url = "http://h/") {
    calls = 0;
    tool.requestJSON(HTTPMethod::JSON_POST, url, std::nullopt,
                     [this](std::optional<Value> value, ErrorPtr reported) {
                       ++calls;
                       thread = std::this_thread::get_id();
                       result = std::move(value);
                       error = std::move(reported);
                     });
  }

  void expectTransportError(const char* message) {
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(result);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain, "com.brovent.error");
    EXPECT_EQ(error->code, -1);
    ASSERT_EQ(error->userInfo.size(), 1U);
    EXPECT_EQ(*error->userInfo.at("error").text(), message);
  }

  std::shared_ptr<FakeSession> session = std::make_shared<FakeSession>();
  NetworkTool tool;
  int calls = 0;
  std::thread::id thread;
  std::optional<Value> result;
  ErrorPtr error;
};

using NetworkToolDeathTest = NetworkToolTest;

TEST_F(NetworkToolTest, ReportsARequestThatCannotBeBuiltBeforeItReturns) {
  start("");
  expectTransportError("请求建立失败");
  EXPECT_EQ(thread, std::this_thread::get_id());
  EXPECT_TRUE(session->requests.empty());
}

TEST_F(NetworkToolTest, HandsOnTheSessionsOwnErrorOnItsQueue) {
  const auto own = std::make_shared<const Error>(Error{"any", -7, {}});
  start();
  session->answer({std::nullopt, std::nullopt, own});
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(error, own);
  EXPECT_FALSE(result);
  EXPECT_EQ(thread, session->threadId());
  EXPECT_EQ(fakeMainQueue().run(), 0U);
}

TEST_F(NetworkToolTest, ReportsWhatIsNoJSONOnTheSessionsQueue) {
  for (const char* body : {"", "plain text", "7", "\"a\"", "null", "true", "[1,]"}) {
    start();
    session->answer(body);
    expectTransportError("反序列化失败");
    EXPECT_EQ(thread, session->threadId());
  }
}

TEST_F(NetworkToolTest, HandsOverTheDecodedReplyOnTheMainQueue) {
  for (const char* body : {"{}", "[]"}) {
    start();
    session->answer({Bytes(body, body + 2), HTTPResponse{500}, nullptr});
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(fakeMainQueue().run(), 1U);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(thread, std::this_thread::get_id());
    EXPECT_FALSE(error);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->map() != nullptr, *body == '{');
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
  fakeMainQueue().run();
  EXPECT_EQ(*capture, 1);
  EXPECT_EQ(capture.use_count(), 1);
}

TEST_F(NetworkToolTest, GoesThroughItsOverridableOperations) {
  struct Tool : NetworkTool {
    std::optional<URLRequest> request(HTTPMethod, std::string_view,
                                      const std::optional<Parameters>&) override {
      return URLRequest("http://own/");
    }
    std::shared_ptr<URLSession> session() override { return own; }
    std::shared_ptr<FakeSession> own = std::make_shared<FakeSession>();
  } overriding;
  overriding.requestJSON(HTTPMethod::POST, "", std::nullopt, nullptr);
  ASSERT_EQ(overriding.own->requests.size(), 1U);
  EXPECT_EQ(overriding.own->requests[0].url(), "http://own/");
  overriding.own->answer("");  // Nobody listens, and that is no fault.
  overriding.cancleAllNetwork();
  EXPECT_EQ(overriding.own->cancellations, 1);
}

TEST_F(NetworkToolTest, MakesItsSessionOnFirstUseAndOnce) {
  NetworkTool fresh;
  fresh.cancleAllNetwork();
  EXPECT_EQ(fakeSession().cancellations, 1);
  EXPECT_EQ(fresh.session().get(), &fakeSession());
  fresh.setSession(nullptr);
  EXPECT_EQ(fresh.session(), nullptr);
  fresh.cancleAllNetwork();
  EXPECT_EQ(fakeSession().cancellations, 1);
}

TEST_F(NetworkToolTest, RacingCallsExchangeWholeHeaderSets) {
  std::vector<std::thread> threads;
  for (const char* name : {"A", "B"}) {
    threads.emplace_back([this, name] {
      for (int i = 0; i < 500; ++i) {
        tool.addHeader({{"X", name}, {"Y", name}});
        const URLRequest request = *tool.request(HTTPMethod::GET, "http://h/", std::nullopt);
        EXPECT_EQ(*request.value("X"), *request.value("Y"));
        tool.setSession(i % 2 ? session : nullptr);
        tool.cancleAllNetwork();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST_F(NetworkToolTest, ManagerForwardsToOneTool) {
  NetworkManager& manager = NetworkManager::sharedManager();
  EXPECT_EQ(&manager, &NetworkManager::sharedManager());
  FakeSession& shared = fakeSession();
  manager.addHeaders({{"A", "1"}});
  manager.addHeaders({});
  manager.requestJSON(HTTPMethod::GET, "http://h/", std::nullopt, nullptr);
  EXPECT_EQ(*shared.requests.back().value("A"), "1");
  shared.answer("");
  manager.cancleAllNetwork();
  EXPECT_EQ(shared.cancellations, 1);
  manager.requestJSON(HTTPMethod::GET, "", std::nullopt, [this](const auto&...) { ++calls; });
  EXPECT_EQ(calls, 1);
}

TEST_F(NetworkToolTest, StopsWithoutSessionOrReply) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  start();
  EXPECT_DEATH(session->answer(DataTaskResult{}), "reported neither a body nor an error\n");
  session->answer("");
  tool.setSession(nullptr);
  EXPECT_DEATH(start(), "orvane: requestJSON: the tool has no session\n");
  EXPECT_DEATH(installPlatform({}), "installPlatform: the platform is in use already\n");
}

TEST_F(NetworkToolTest, IsBuiltByKind) {
  struct Row {
    HTTPMethod method;
    const char* url;
    std::optional<Parameters> parameters;
    const char* expectedURL;
    const char* expectedMethod;
    const char* expectedBody;
  };
  using enum HTTPMethod;
  const std::vector<Row> rows = {
      {GET, "http://h/p", std::nullopt, "http://h/p", "GET", "no body"},
      {GET, "http://h/p", Parameters{}, "http://h/p?", "GET", "no body"},
      {GET, "http://h/p?a=b", Parameters{{"k", "v"}, {"l", "w"}}, "http://h/p?a=b?k=v&l=w", "GET", "no body"},
      {POST, "http://h/p", Parameters{{"k", "v x"}}, "http://h/p", "POST", "k=v%20x"},
      {POST, "http://h/p", Parameters{}, "http://h/p", "POST", ""},
      {JSON_POST, "http://h/p", std::nullopt, "http://h/p", "POST", "no body"},
      {JSON_POST, "http://h/p", Parameters{}, "http://h/p", "POST", "no body"},
      {JSON_POST, "http://h/p", Parameters{{"k", Array{1, 2.5, "\"", nullptr, true}}}, "http://h/p", "POST",
       R"({"k":[1,2.5,"\"",null,true]})"}};
  NetworkTool tool;
  for (const Row& row : rows) {
    const std::optional<URLRequest> request = tool.request(row.method, row.url, row.parameters);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->url(), row.expectedURL);
    EXPECT_EQ(request->method(), row.expectedMethod);
    EXPECT_EQ(text(request->body()), row.expectedBody);
    EXPECT_EQ(headerLines(*request), "");
  }
}

TEST_F(NetworkToolTest, IsAbsentWithoutURLOrPostParameters) {
  NetworkTool tool;
  EXPECT_FALSE(tool.request(HTTPMethod::POST, "http://h/", std::nullopt));
  tool.addHeader({{"A", "1"}});
  for (const HTTPMethod method : {HTTPMethod::GET, HTTPMethod::POST, HTTPMethod::JSON_POST})
    EXPECT_FALSE(tool.request(method, "", Parameters{{"k", "v"}}));
}

TEST_F(NetworkToolTest, CarriesTheLastHeaderSetThatHeldAnything) {
  NetworkTool tool;
  const auto headers = [&tool] {
    return headerLines(*tool.request(HTTPMethod::GET, "http://h/", std::nullopt));
  };
  tool.addHeader({{"A", "1"}, {"B", "2"}});
  EXPECT_EQ(headers(), "A: 1\nB: 2\n");
  tool.addHeader({{"C", ""}});
  EXPECT_EQ(headers(), "C: \n");
  tool.addHeader({});
  EXPECT_EQ(headers(), "C: \n");
}

TEST_F(NetworkToolTest, EncodesValuesAndLeavesKeys) {
  NetworkTool tool;
  EXPECT_EQ(tool.queryString(std::nullopt), std::nullopt);
  const std::vector<std::pair<Parameters, std::string>> rows = {
      {{}, ""},
      {{{"a key&", ""}}, "a key&="},
      {{{"a", "azAZ09"}, {"b", "-._~ &=+%/\"\x7F\x01"}},
       "a=azAZ09&b=%2D%2E%5F%7E%20%26%3D%2B%25%2F%22%7F%01"},
      {{{"k", "中a文 😀€"}}, "k=中a文%20%F0%9F%98%80%E2%82%AC"},
      {{{"k", std::string_view("\0", 1)}}, "k=%00"}};
  for (const auto& [parameters, expected] : rows) EXPECT_EQ(tool.queryString(parameters), expected);
}

TEST_F(NetworkToolTest, GoesThroughAnOverriddenQueryString) {
  struct Tool : NetworkTool {
    std::optional<std::string> queryString(const std::optional<Parameters>&) override { return "own"; }
  } tool;
  EXPECT_EQ(tool.request(HTTPMethod::GET, "http://h/", std::nullopt)->url(), "http://h/?own");
  EXPECT_EQ(text(tool.request(HTTPMethod::POST, "http://h/", std::nullopt)->body()), "own");
}

TEST_F(NetworkToolDeathTest, StopsOnProgrammingErrors) {
  NetworkTool tool;
  using enum HTTPMethod;
  const Parameters noText = {{"k", 7}};
  const Parameters noUTF8 = {{"k", "\xFF"}};
  const Parameters noNumber = {{"k", std::numeric_limits<double>::infinity()}};
  EXPECT_DEATH(tool.request(GET, "not a url", std::nullopt),
               "^orvane: request: the text given as URL is not a URL\n$");
  EXPECT_DEATH(tool.request(JSON_POST, "not a url", std::nullopt), "is not a URL");
  EXPECT_DEATH(tool.request(POST, "not a url", Parameters{}), "is not a URL");
  EXPECT_DEATH(tool.request(GET, "http://h/", Parameters{{"a key", "v"}}), "is not a URL");
  EXPECT_DEATH(tool.request(JSON_POST, "http://h/", noUTF8), "cannot be represented in JSON");
  EXPECT_DEATH(tool.request(JSON_POST, "http://h/", noNumber), "cannot be represented in JSON");
  EXPECT_DEATH(tool.request(GET, "http://h/", noText), "value is not a text");
  EXPECT_DEATH(tool.queryString(noUTF8), "value is not UTF-8");
  tool.addHeader({{"A", "1"}});
  EXPECT_DEATH(tool.request(POST, "http://h/", std::nullopt), "POST without parameters");
}

TEST(DispatchQueue, AGroupNotifiesAfterItsTask) {
  const auto notified = std::make_shared<ManualQueue>();
  ManualQueue queue;
  int step = 0;
  queue.asyncGroup([&] { EXPECT_EQ(++step, 1); }, notified, [&] { EXPECT_EQ(++step, 2); });
  EXPECT_EQ(notified->run(), 0U);
  EXPECT_EQ(queue.run() + notified->run(), 2U);
  EXPECT_EQ(step, 2);
}

}  // namespace
}  // namespace orvane::test
