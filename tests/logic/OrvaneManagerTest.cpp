#include <gtest/gtest.h>

#include "orvane/client/JudgedReply.h"
#include "orvane/client/OrvaneManager.h"
#include "orvane/json/readJSON.h"
#include "orvane/network/serviceBaseURL.h"
#include "tests/support/TestPlatform.h"
#include "tests/support/asText.h"

namespace orvane::test {
namespace {

std::string text(const ErrorPtr& error) {
  if (!error) return "none";
  return errorDescription(*error) + (error->userInfo.empty() ? "" : " and user information");
}

/// Returns the last request as "METHOD URL BODY NAME=VALUE ...", without the base URL.
std::string lastRequest() {
  const URLRequest& request = fakeSession().requests.back();
  EXPECT_TRUE(request.url().starts_with(serviceBaseURL()));
  std::string line = request.method() + " " + request.url().substr(serviceBaseURL().size());
  line += " " + asText(request.body());
  for (const auto& [name, value] : request.headers()) line += " " + name + "=" + value;
  return line;
}

/// Answers the request under way and runs what that puts on the main queue.
void answer(std::string_view reply) {
  fakeSession().answer(reply);
  fakeMainQueue().runPending();
}

// Each of these makes a call with fixed arguments, and returns what `finished` receives, as text.
using Call = std::string (*)(std::string_view reply);

std::string picture(std::string_view reply) {
  std::string outcome = "not called";
  OrvaneManager().requestPictureCode(
      "139", [&](const auto& data, const ErrorPtr& error) { outcome = asText(data) + " " + text(error); });
  answer(reply);
  return outcome;
}

std::string code(std::string_view reply) {
  std::string outcome = "not called";
  OrvaneManager().requestCode("139", "aB3d", [&](const ErrorPtr& error) { outcome = text(error); });
  answer(reply);
  return outcome;
}

std::string login(std::string_view reply) {
  std::string outcome = "not called";
  OrvaneManager().requestLogin("139", "123456", [&](const auto& message, const ErrorPtr& error) {
    outcome = message.value_or("nothing") + ", " + text(error);
  });
  answer(reply);
  return outcome;
}

class OrvaneManagerTest : public OnFakes {};
using OrvaneManagerDeathTest = OrvaneManagerTest;

TEST_F(OrvaneManagerTest, SendsItsOwnIdentifierAndTheArgumentsAsTheyAre) {
  struct : OrvaneManager {
    std::optional<std::string> clientId() const override { return "own"; }
  } manager;
  manager.requestCode(" 139\n", "\"", nullptr);
  EXPECT_EQ(lastRequest(),
            R"(POST /tenant/getVerifyCode {"captcha":"\"","mobile":" 139\n"})"
            " Content-Type=application/json XRAPI-CLIENT-ID=own XRAPI-DEVICE-TYPE=1 XRAPI-VERSION=1.0");
  OrvaneManager().requestLogin("", "", nullptr);
  EXPECT_EQ(fakeSession().requests.back().value("XRAPI-CLIENT-ID"), nullptr);
  EXPECT_EQ(&OrvaneManager::shareManager(), &OrvaneManager::shareManager());
}

TEST_F(OrvaneManagerTest, JudgesReplies) {
  const std::tuple<Call, const char*, std::string> rows[] = {
      {code, R"({"code":0,"msg":7,"data":8})", "none"},
      {code, R"({"code":0.9})", "none"},
      {code, R"({"code":7,"msg":"Busy"})", "Busy (7)"},
      {code, R"({"code":-7.9,"msg":""})", " (-7)"},
      {code, R"({"code":1e300,"msg":"m"})", "m (9223372036854775807)"},
      {picture, R"({"code":0,"data":[]})", " none"},
      {picture, R"({"code":0,"msg":7,"data":[104,105]})", "hi none"},
      {picture, R"({"code":0,"data":["104","+105","0000000033",46.0]})", "hi!. none"},
      {picture, R"({"code":0,"data":["-0",-0.0,"-000","+0"]})", std::string(4, '\0') + " none"},
      {picture, R"({"code":7,"msg":"Busy","data":7})", "none Busy (7)"},
      {login, R"({"code":9,"msg":"No"})", "No, No (1)"},
      {login, R"({"code":0,"msg":"Welcome"})", "Welcome, none"}};
  for (const auto& [call, reply, outcome] : rows) EXPECT_EQ(call(reply), outcome) << reply;
}

TEST_F(OrvaneManagerTest, HandsOnTheSameErrorAndTracesItForThePicture) {
  const DataTaskResult failure = failed({"Domain", -9, {{"number", "139"}}});
  std::vector<ErrorPtr> received;
  const auto keep = [&](const ErrorPtr& error) { received.push_back(error); };
  OrvaneManager().requestPictureCode("139", [&](const auto&, const ErrorPtr& error) { keep(error); });
  OrvaneManager().requestCode("139", "c", keep);
  testing::internal::CaptureStdout();
  fakeSession().answer(failure);
  fakeSession().answer(failure);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "orvane: requestPictureCode: Domain (-9)\n");
  EXPECT_EQ(received, (std::vector<ErrorPtr>{failure.error, failure.error}));
}

TEST_F(OrvaneManagerTest, ReportsAnAcceptedLoginBeforeItFinishes) {
  OrvaneManager manager;
  manager.setAppClientId("app");
  std::string requestAtFinish;
  manager.requestLogin("139", "1", [&](const auto&...) { requestAtFinish = lastRequest(); });
  answer(R"({"code":0,"msg":"ok","mobile":"other"})");
  EXPECT_EQ(requestAtFinish,
            R"(POST /tenant/submitMobileInformation {"IMEI":" ","IMSI":" ","carrier":"nil",)"
            R"("deviceModel":"iOS 9.3.1","deviceName":"iPhone6S","mobile":"139"})"
            " Content-Type=application/json XRAPI-CLIENT-ID=app XRAPI-DEVICE-TYPE=1 XRAPI-VERSION=1.0");
  fakeSession().answer(failed({}));
  EXPECT_EQ(fakeMainQueue().runPending(), 0U);
}

TEST_F(OrvaneManagerTest, LoginReadsTheReplyBeforeTheError) {
  const auto error = std::make_shared<const Error>();
  const JudgedReply judged = judgeLogin(readJSON(R"({"msg":"m"})"), error);
  EXPECT_EQ(judged.message, "网络错误");
  EXPECT_EQ(judged.error, error);
  EXPECT_EQ(judged.flaw, "");
}

TEST_F(OrvaneManagerDeathTest, MalformedRepliesStopTheProcess) {
  std::vector<std::tuple<Call, std::string, std::string>> rows = {
      {code, "[]", "requestCode: the reply is not a map"},
      {code, "{}", "requestCode: the reply has no \"code\""},
      {code, R"({"code":"0"})", "requestCode: the reply's \"code\" is not a number"},
      {code, R"({"code":true})", "requestCode: the reply's \"code\" is not a number"},
      {code, R"({"code":5})", "requestCode: the reply has no \"msg\""},
      {code, R"({"code":5,"msg":null})", "requestCode: the reply's \"msg\" is not a string"},
      {picture, R"({"code":5})", "requestPictureCode: the reply has no \"msg\""},
      {picture, R"({"code":0})", "requestPictureCode: the reply has no \"data\""},
      {picture, R"({"code":0,"data":"iVBOR"})", "requestPictureCode: the reply's \"data\" is not an array"},
      {login, R"({"code":0})", "requestLogin: the reply has no \"msg\""},
      {login, R"({"msg":"m"})", "requestLogin: the reply has no \"code\""}};
  for (const char* element :
       {"256", "-1", "12.5", "\"\"", "\" 1\"", "\"1 \"", "\"-1\"", "\"256\"", "\"1.0\"", "\"1e1\"", "\"++1\"",
        "\"0x1\"", "\"+\"", "null", "true", "[1]", "{}", "1e99"}) {
    rows.emplace_back(picture, std::string(R"({"code":0,"data":[1,)") + element + "]}",
                      "requestPictureCode: an element of the reply's \"data\" is not a byte");
  }
  for (const auto& [call, reply, line] : rows)
    EXPECT_DEATH(std::puts(call(reply).c_str()), "^orvane: " + line + "\n$") << reply;
  EXPECT_DEATH(OrvaneManager().requestCode("\xFF", "c", nullptr),
               "^orvane: request: the parameters cannot be represented in JSON\n$");
}

}  // namespace
}  // namespace orvane::test
