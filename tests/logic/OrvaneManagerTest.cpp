#include <gtest/gtest.h>

#include "orvane/client/JudgedReply.h"
#include "orvane/client/OrvaneManager.h"
#include "orvane/client/ServiceAddress.h"
#include "orvane/json/readJSON.h"
#include "tests/support/TestPlatform.h"

namespace orvane::test {
namespace {

std::string body(const URLRequest& request) {
  return {request.body()->begin(), request.body()->end()};
}

std::string errorText(const ErrorPtr& error) {
  if (!error) return "none";
  return description(*error) + (error->userInfo.empty() ? "" : " and user information");
}

/// Answers the request under way and runs what that puts on the main queue.
void answer(std::string_view reply) {
  fakeSession().answer(reply);
  fakeMainQueue().run();
}

/// Each call with fixed arguments; what `finished` was given, as text. "not called" stays if it was not.
struct Calls {
  static std::string picture(std::string_view reply) {
    std::string outcome = "not called";
    OrvaneManager().requestPictureCode("139", [&](std::optional<Bytes> data, const ErrorPtr& error) {
      outcome =
          (data ? "[" + std::string(data->begin(), data->end()) + "] " : "nothing, ") + errorText(error);
    });
    answer(reply);
    return outcome;
  }
  static std::string code(std::string_view reply) {
    std::string outcome = "not called";
    OrvaneManager().requestCode("139", "aB3d", [&](const ErrorPtr& error) { outcome = errorText(error); });
    answer(reply);
    return outcome;
  }
  static std::string login(std::string_view reply) {
    std::string outcome = "not called";
    OrvaneManager().requestLogin("139", "123456",
                                 [&](std::optional<std::string> message, const ErrorPtr& error) {
                                   outcome = message.value_or("nothing") + ", " + errorText(error);
                                 });
    answer(reply);
    return outcome;
  }
};

class Manager : public OnFakes {};
using ManagerDeathTest = Manager;

TEST_F(Manager, SendsTheEnvelope) {
  OrvaneManager manager;
  const auto lastHeaders = [] {
    std::string lines;
    for (const auto& [name, value] : fakeSession().requests.back().headers())
      lines += name + "=" + value + ";";
    return lines;
  };
  const std::string common = "Content-Type=application/json;";
  const std::string rest = "XRAPI-DEVICE-TYPE=1;XRAPI-VERSION=1.0;";
  const std::string base(serviceBaseURL());

  manager.requestPictureCode("", nullptr);
  EXPECT_EQ(fakeSession().requests.back().url(), base + "/tenant/verify/captcha");
  EXPECT_EQ(fakeSession().requests.back().method(), "POST");
  EXPECT_EQ(body(fakeSession().requests.back()), R"({"mobile":""})");
  EXPECT_EQ(lastHeaders(), common + rest);
  answer(R"({"code":0,"data":[]})");

  manager.setAppClientId("");
  manager.requestCode(" 139\n", "\"", nullptr);
  EXPECT_EQ(fakeSession().requests.back().url(), base + "/tenant/getVerifyCode");
  EXPECT_EQ(body(fakeSession().requests.back()), R"({"captcha":"\"","mobile":" 139\n"})");
  EXPECT_EQ(lastHeaders(), common + "XRAPI-CLIENT-ID=;" + rest);
  answer(R"({"code":0})");

  OrvaneManager other;
  other.setClientId("other");
  other.requestCode("1", "2", nullptr);
  EXPECT_EQ(lastHeaders(), common + "XRAPI-CLIENT-ID=other;" + rest);
  answer(R"({"code":0})");
  EXPECT_EQ(manager.clientId(), "");

  manager.setClientId(std::nullopt);
  manager.requestLogin("1", "", nullptr);
  EXPECT_EQ(fakeSession().requests.back().url(), base + "/tenant/submitVerifyCode");
  EXPECT_EQ(body(fakeSession().requests.back()), R"({"mobile":"1","verificationCode":""})");
  EXPECT_EQ(lastHeaders(), common + rest);
  answer(R"({"code":1,"msg":""})");

  EXPECT_EQ(&OrvaneManager::shareManager(), &OrvaneManager::shareManager());
}

TEST_F(Manager, ReadsTheIdentifierThroughItsGetter) {
  struct Manager : OrvaneManager {
    std::optional<std::string> clientId() const override { return "own"; }
  } manager;
  manager.requestCode("1", "2", nullptr);
  EXPECT_EQ(*fakeSession().requests.back().value("XRAPI-CLIENT-ID"), "own");
  answer(R"({"code":0})");
}

TEST_F(Manager, JudgesReplies) {
  struct Row {
    std::string (*call)(std::string_view);
    const char* reply;
    std::string expected;
  };
  const std::vector<Row> rows = {
      {Calls::code, R"({"code":0})", "none"},
      {Calls::code, R"({"code":0,"msg":7,"data":8})", "none"},
      {Calls::code, R"({"code":0.9})", "none"},
      {Calls::code, R"({"code":7,"msg":"Busy"})", "Busy (7)"},
      {Calls::code, R"({"code":-7.9,"msg":""})", " (-7)"},
      {Calls::code, R"({"code":1e300,"msg":"m"})", "m (9223372036854775807)"},
      {Calls::code, "not JSON", "com.brovent.error (-1) and user information"},
      {Calls::picture, R"({"code":0,"data":[]})", "[] none"},
      {Calls::picture, R"({"code":0,"msg":7,"data":[104,105]})", "[hi] none"},
      {Calls::picture, R"({"code":0,"data":["104","+105","0000000033",46.0]})", "[hi!.] none"},
      {Calls::picture, R"({"code":0,"data":["-0",-0.0,"-000","+0"]})", "[" + std::string(4, '\0') + "] none"},
      {Calls::picture, R"({"code":7,"msg":"Busy","data":7})", "nothing, Busy (7)"},
      {Calls::login, R"({"code":9,"msg":"No"})", "No, No (1)"},
      {Calls::login, R"({"code":0,"msg":"Welcome"})", "Welcome, none"}};
  for (const auto& [call, reply, expected] : rows) {
    EXPECT_EQ(call(reply), expected) << reply;
    if (expected == "Welcome, none") answer("ignored");
  }
}

TEST_F(Manager, HandsOnTheSameErrorAndTracesItForThePicture) {
  const auto own = std::make_shared<const Error>(Error{"Domain", -9, {{"number", "139"}}});
  std::vector<ErrorPtr> received;
  OrvaneManager manager;
  manager.requestPictureCode("139", [&](const auto& data, ErrorPtr error) {
    EXPECT_FALSE(data);
    received.push_back(std::move(error));
  });
  manager.requestCode("139", "c", [&](ErrorPtr error) { received.push_back(std::move(error)); });
  testing::internal::CaptureStdout();
  fakeSession().answer({std::nullopt, std::nullopt, own});
  fakeSession().answer({std::nullopt, std::nullopt, own});
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "orvane: requestPictureCode: Domain (-9)\n");
  EXPECT_EQ(received, (std::vector<ErrorPtr>{own, own}));
}

TEST_F(Manager, ReportsAnAcceptedLoginAfterTheSubmissionHasLeft) {
  FakeSession& session = fakeSession();
  OrvaneManager manager;
  manager.setAppClientId("app");
  std::size_t requestsAtFinish = 0;
  manager.requestLogin("139", "1", [&](const auto&...) { requestsAtFinish = session.requests.size(); });
  answer(R"({"code":0,"msg":"ok","mobile":"other"})");
  EXPECT_EQ(requestsAtFinish, 2U);
  const URLRequest& submission = session.requests.back();
  EXPECT_EQ(submission.url(), std::string(serviceBaseURL()) + "/tenant/submitMobileInformation");
  EXPECT_EQ(*submission.value("XRAPI-CLIENT-ID"), "app");
  EXPECT_EQ(body(submission), R"({"IMEI":" ","IMSI":" ","carrier":"nil","deviceModel":"iOS 9.3.1",)"
                              R"("deviceName":"iPhone6S","mobile":"139"})");
  session.answer({std::nullopt, std::nullopt, std::make_shared<const Error>()});
  EXPECT_EQ(fakeMainQueue().run(), 0U);
}

TEST_F(Manager, LoginReadsTheReplyBeforeTheError) {
  const auto error = std::make_shared<const Error>(Error{"d", 1, {}});
  const JudgedReply reply = judgeLogin(readJSON(R"({"msg":"m"})"), error);
  EXPECT_EQ(reply.message, "网络错误");
  EXPECT_EQ(reply.error, error);
  EXPECT_EQ(reply.flaw, "");
}

TEST_F(ManagerDeathTest, MalformedRepliesStopTheProcess) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  struct Row {
    std::string (*call)(std::string_view);
    const char* reply;
    const char* line;
  };
  const std::vector<Row> rows = {
      {Calls::code, "[]", "requestCode: the reply is not a map"},
      {Calls::code, "{}", "requestCode: the reply has no \"code\""},
      {Calls::code, R"({"code":"0"})", "requestCode: the reply's \"code\" is not a number"},
      {Calls::code, R"({"code":true})", "requestCode: the reply's \"code\" is not a number"},
      {Calls::code, R"({"code":5})", "requestCode: the reply has no \"msg\""},
      {Calls::code, R"({"code":5,"msg":null})", "requestCode: the reply's \"msg\" is not a text"},
      {Calls::picture, "[]", "requestPictureCode: the reply is not a map"},
      {Calls::picture, R"({"code":null})", "requestPictureCode: the reply's \"code\" is not a number"},
      {Calls::picture, R"({"code":5})", "requestPictureCode: the reply has no \"msg\""},
      {Calls::picture, R"({"code":0})", "requestPictureCode: the reply has no \"data\""},
      {Calls::picture, R"({"code":0,"data":"iVBOR"})",
       "requestPictureCode: the reply's \"data\" is not an array"},
      {Calls::login, "not JSON", "requestLogin: there is no reply"},
      {Calls::login, "[]", "requestLogin: the reply is not a map"},
      {Calls::login, R"({"code":0})", "requestLogin: the reply has no \"msg\""},
      {Calls::login, R"({"code":0,"msg":1})", "requestLogin: the reply's \"msg\" is not a text"},
      {Calls::login, R"({"msg":"m"})", "requestLogin: the reply has no \"code\""},
      {Calls::login, R"({"msg":"m","code":"0"})", "requestLogin: the reply's \"code\" is not a number"}};
  for (const auto& [call, reply, line] : rows)
    EXPECT_DEATH(std::puts(call(reply).c_str()), "^orvane: " + std::string(line) + "\n$") << reply;
  for (const char* element :
       {"256", "-1", "12.5", "\"\"", "\" 1\"", "\"1 \"", "\"-1\"", "\"256\"", "\"1.0\"", "\"1e1\"", "\"++1\"",
        "\"0x1\"", "\"+\"", "null", "true", "[1]", "{}", "1e99"}) {
    EXPECT_DEATH(Calls::picture(std::string(R"({"code":0,"data":[1,)") + element + "]}"),
                 "^orvane: requestPictureCode: an element of the reply's \"data\" is not a byte\n$");
  }
  EXPECT_DEATH(OrvaneManager().requestCode("\xFF", "c", nullptr), "cannot be represented in JSON");
}

}  // namespace
}  // namespace orvane::test
