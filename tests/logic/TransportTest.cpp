#include <gtest/gtest.h>

#include "orvane/network/HTTPSUpgradeSession.h"
#include "orvane/network/NetWorkManager.h"
#include "orvane/network/NetworkTool.h"
#include "tests/support/TestPlatform.h"

namespace orvane {
namespace {

using test::FakeSession;

/// A tool on a session of the test's own, and what its last call came to.
class Transport : public test::OnFakes {
 protected:
  Transport() { tool.setSession(session); }

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

TEST_F(Transport, ReportsARequestThatCannotBeBuiltBeforeItReturns) {
  start("");
  expectTransportError("请求建立失败");
  EXPECT_EQ(thread, std::this_thread::get_id());
  EXPECT_TRUE(session->requests.empty());
}

TEST_F(Transport, HandsOnTheSessionsOwnErrorOnItsQueue) {
  const auto own = std::make_shared<const Error>(Error{"any", -7, {}});
  start();
  session->answer({std::nullopt, std::nullopt, own});
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(error, own);
  EXPECT_FALSE(result);
  EXPECT_EQ(thread, session->threadId());
  EXPECT_EQ(test::fakeMainQueue().run(), 0U);
}

TEST_F(Transport, ReportsWhatIsNoJSONOnTheSessionsQueue) {
  for (const char* body : {"", "plain text", "7", "\"a\"", "null", "true", "[1,]"}) {
    start();
    session->answer(body);
    expectTransportError("反序列化失败");
    EXPECT_EQ(thread, session->threadId());
  }
}

TEST_F(Transport, HandsOverTheDecodedReplyOnTheMainQueue) {
  for (const char* body : {"{}", "[]"}) {
    start();
    session->answer({Bytes(body, body + 2), HTTPResponse{500}, nullptr});
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(test::fakeMainQueue().run(), 1U);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(thread, std::this_thread::get_id());
    EXPECT_FALSE(error);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->map() != nullptr, *body == '{');
  }
}

TEST_F(Transport, KeepsTheCompletionAndNothingOfTheTool) {
  const auto capture = std::make_shared<int>();
  {
    NetworkTool shortLived;
    shortLived.setSession(session);
    shortLived.requestJSON(HTTPMethod::GET, "http://h/", std::nullopt,
                           [capture](const auto&...) { ++*capture; });
  }
  session->answer("{}");
  EXPECT_EQ(capture.use_count(), 2);
  test::fakeMainQueue().run();
  EXPECT_EQ(*capture, 1);
  EXPECT_EQ(capture.use_count(), 1);
}

TEST_F(Transport, GoesThroughItsOverridableOperations) {
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

TEST_F(Transport, MakesItsSessionOnFirstUseAndOnce) {
  NetworkTool fresh;
  fresh.cancleAllNetwork();
  EXPECT_EQ(test::fakeSession().cancellations, 1);
  EXPECT_EQ(fresh.session().get(), &test::fakeSession());
  fresh.setSession(nullptr);
  EXPECT_EQ(fresh.session(), nullptr);
  fresh.cancleAllNetwork();
  EXPECT_EQ(test::fakeSession().cancellations, 1);
}

TEST_F(Transport, AGroupNotifiesAfterItsTask) {
  const auto notified = std::make_shared<test::ManualQueue>();
  test::ManualQueue queue;
  int step = 0;
  queue.asyncGroup([&] { EXPECT_EQ(++step, 1); }, notified, [&] { EXPECT_EQ(++step, 2); });
  EXPECT_EQ(notified->run(), 0U);
  EXPECT_EQ(queue.run() + notified->run(), 2U);
  EXPECT_EQ(step, 2);
}

TEST_F(Transport, UpgradesRequestsForItsHostsAndNothingElse) {
  HTTPSUpgradeSession upgrading(session, {"Service.example", "[::1]"});
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"http://service.example/p?q#f", "https://service.example/p?q#f"},
      {"HTTP://SERVICE.EXAMPLE", "https://SERVICE.EXAMPLE"},
      {"http://u:80@service.example:80/80", "https://u:80@service.example:443/80"},
      {"http://service.example:0080?80", "https://service.example:443?80"},
      {"http://service.example:/", "https://service.example:/"},
      {"http://service.example:8080/", "https://service.example:8080/"},
      {"http://[::1]:80/", "https://[::1]:443/"}};
  const auto sent = [&](const std::string& url) {
    URLRequest request(url);
    request.setMethod("PUT");
    request.setBody({'b'});
    request.addValue("v", "n");
    upgrading.startDataTask(request, [this](const auto&) { ++calls; });
    const URLRequest& last = session->requests.back();
    EXPECT_TRUE(last.method() == "PUT" && last.body() == request.body() &&
                last.headers() == request.headers());
    session->answer("");
    return last.url();
  };
  for (const auto& [url, expected] : rows) EXPECT_EQ(sent(url), expected);
  for (const char* url :
       {"https://service.example:80/", "http://other.example/", "http://service.example.org/",
        "http://service.example@other.example/", "ftp://service.example/", "service.example", ""})
    EXPECT_EQ(sent(url), url);
  EXPECT_EQ(calls, 14);
  upgrading.cancelAllOperations();
  EXPECT_EQ(session->cancellations, 1);
}

TEST_F(Transport, RacingCallsExchangeWholeHeaderSets) {
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

TEST_F(Transport, ManagerForwardsToOneTool) {
  NetworkManager& manager = NetworkManager::sharedManager();
  EXPECT_EQ(&manager, &NetworkManager::sharedManager());
  FakeSession& shared = test::fakeSession();
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

TEST_F(Transport, StopsWithoutSessionOrReply) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  start();
  EXPECT_DEATH(session->answer(DataTaskResult{}), "reported neither a body nor an error\n");
  session->answer("");
  tool.setSession(nullptr);
  EXPECT_DEATH(start(), "orvane: requestJSON: the tool has no session\n");
  EXPECT_DEATH(installPlatform({}), "installPlatform: the platform is in use already\n");
}

}  // namespace
}  // namespace orvane
