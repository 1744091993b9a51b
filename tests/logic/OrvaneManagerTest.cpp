#include <gtest/gtest.h>

#include "orvane/client/JudgedReply.h"
#include "orvane/client/OrvaneManager.h"
#include "orvane/json/readJSON.h"
#include "orvane/network/serviceBaseURL.h"
#include "tests/support/TestPlatform.h"
#include "tests/support/asText.h"

namespace orvane::test {
namespace {

/// Returns the last request as "METHOD URL BODY NAME=VALUE ...", without the base URL.
std::string lastRequest() {
  const URLRequest& request = fakeSession().requests.back();
  EXPECT_TRUE(request.url().starts_with(serviceBaseURL()));
  std::string line = request.method() + " " + request.url().substr(serviceBaseURL().size());
  line += " " + asText(request.body());
  for (const auto& [name, value] : request.headers()) line += " " + name + "=" + value;
  return line;
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
  fakeSession().answer(R"({"code":0,"msg":"ok","mobile":"other"})");
  fakeMainQueue().runPending();
  EXPECT_EQ(requestAtFinish,
            R"(POST /tenant/submitMobileInformation {"IMEI":" ","IMSI":" ","carrier":"nil",)"
            R"("deviceModel":"iOS 9.3.1","deviceName":"iPhone6S","mobile":"139"})"
            " Content-Type=application/json XRAPI-CLIENT-ID=app XRAPI-DEVICE-TYPE=1 XRAPI-VERSION=1.0");
  fakeSession().answer(failed({}));
  EXPECT_EQ(fakeMainQueue().runPending(), 0U);
}

TEST_F(OrvaneManagerDeathTest, AReplyThatACallCannotReadStopsTheProcess) {
  const auto call = [] {
    OrvaneManager().requestCode("139", "c", nullptr);
    fakeSession().answer("[]");
    fakeMainQueue().runPending();
  };
  EXPECT_DEATH(call(), "^orvane: requestCode: the reply is not a map\n$");
}

using Judge = JudgedReply (*)(std::optional<Value> result, ErrorPtr error);

/// Returns the flaw, or else what `finished` would receive.
std::string outcome(Judge judge, const std::string& reply) {
  const JudgedReply judged = judge(readJSON(reply), nullptr);
  if (!judged.flaw.empty()) return std::string(judged.flaw);
  if (judged.error) return errorDescription(*judged.error);
  return judged.picture ? asText(judged.picture) : judged.message.value_or("accepted");
}

TEST(JudgedReply, HasTheOutcomeOrTheFlaw) {
  const std::tuple<Judge, const char*, std::string> rows[] = {
      {judgeCode, R"({"code":0,"msg":7,"data":8})", "accepted"},
      {judgeCode, R"({"code":0.9})", "accepted"},
      {judgeCode, R"({"code":-7.9,"msg":""})", " (-7)"},
      {judgeCode, R"({"code":1e300,"msg":"m"})", "m (9223372036854775807)"},
      {judgeCode, "[]", "the reply is not a map"},
      {judgeCode, "{}", "the reply has no \"code\""},
      {judgeCode, R"({"code":"0"})", "the reply's \"code\" is not a number"},
      {judgeCode, R"({"code":5})", "the reply has no \"msg\""},
      {judgeCode, R"({"code":5,"msg":null})", "the reply's \"msg\" is not a string"},
      {judgePictureCode, R"({"code":7,"msg":"Busy","data":7})", "Busy (7)"},
      {judgePictureCode, R"({"code":0})", "the reply has no \"data\""},
      {judgePictureCode, R"({"code":0,"data":"iVBOR"})", "the reply's \"data\" is not an array"},
      {judgeLogin, R"({"code":0,"msg":"Welcome"})", "Welcome"},
      {judgeLogin, R"({"code":9,"msg":"No"})", "No (1)"},
      {judgeLogin, R"({"code":0})", "the reply has no \"msg\""},
      {judgeLogin, R"({"msg":"m"})", "the reply has no \"code\""}};
  for (const auto& [judge, reply, expected] : rows) EXPECT_EQ(outcome(judge, reply), expected) << reply;
}

TEST(JudgedReply, HasThePictureIfAllElementsAreBytes) {
  const std::pair<std::string, std::string> rows[] = {{"[]", ""},
                                                      {"[104,105]", "hi"},
                                                      {R"(["104","+105","0000000033",46.0])", "hi!."},
                                                      {R"(["-0",-0.0,"-000","+0"])", std::string(4, '\0')}};
  for (const auto& [data, picture] : rows)
    EXPECT_EQ(outcome(judgePictureCode, R"({"code":0,"data":)" + data + "}"), picture);
  for (const std::string other :
       {"256", "-1", "12.5", R"("")", R"(" 1")", R"("1 ")", R"("-1")", R"("256")", R"("1.0")", R"("1e1")",
        R"("++1")", R"("0x1")", R"("+")", "null", "true", "[1]", "{}", "1e99"}) {
    EXPECT_EQ(outcome(judgePictureCode, R"({"code":0,"data":[1,)" + other + "]}"),
              "an element of the reply's \"data\" is not a byte")
        << other;
  }
}

TEST(JudgedReply, OfALoginIsReadBeforeTheError) {
  const auto error = std::make_shared<const Error>();
  const JudgedReply judged = judgeLogin(readJSON(R"({"msg":"m"})"), error);
  EXPECT_EQ(judged.message, "网络错误");
  EXPECT_EQ(judged.error, error);
  EXPECT_EQ(judged.flaw, "");
}

}  // namespace
}  // namespace orvane::test
