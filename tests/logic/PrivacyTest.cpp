// The library prints only the line of a stop and the picture call's trace. Neither holds what it was given.

#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

#include "orvane/orvane.h"
#include "tests/support/TestPlatform.h"

namespace orvane::test {
namespace {

// Mobile number, code, identifier and piece of a reply in one. No text of the library has this digit.
const std::string secret = "99999999999";

using PrivacyDeathTest = OnFakes;

/// Expects that `path` prints `lines`: one line without the secret, or that or none.
void expectDiscreet(const std::function<void()>& path, const char* lines = "^orvane: [^9\n]*\n$") {
  const auto run = [&path] {
    std::fflush(stdout);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    path();
    std::_Exit(0);  // What is printed has been flushed.
  };
  EXPECT_EXIT(
      run(), [](int) { return true; }, lines);
}

TEST_F(PrivacyDeathTest, RepliesAreNotPrinted) {
  const DataTaskResult failure =
      failed({"NSURLErrorDomain", -1004, {{"NSErrorFailingURLStringKey", secret}}});
  std::vector<DataTaskResult> results = {{}, failure};
  // The secret stands in the place of each S.
  for (std::string text :
       {"S", "[S]", R"({"S":"S"})", R"({"code":"S","msg":"S"})", R"({"code":S,"msg":["S"]})",
        R"({"code":S,"msg":"S"})", R"({"code":0,"msg":"S","data":"S"})",
        R"({"code":0,"msg":"S","data":[7,"S"]})", R"({"code":0,"msg":"S","data":[S]})"}) {
    while (text.find('S') != text.npos) text.replace(text.find('S'), 1, secret);
    results.push_back(replied(text));
  }
  const std::function<void(OrvaneManager&)> calls[] = {
      [](OrvaneManager& manager) { manager.requestPictureCode(secret, nullptr); },
      [](OrvaneManager& manager) { manager.requestCode(secret, secret, nullptr); },
      [](OrvaneManager& manager) { manager.requestLogin(secret, secret, nullptr); }};
  for (const auto& call : calls) {
    for (const DataTaskResult& result : results) {
      const auto answered = [&] {
        OrvaneManager manager;
        manager.setAppClientId(secret);
        call(manager);
        fakeSession().answer(result);
        fakeMainQueue().run();
      };
      expectDiscreet(answered, "^(orvane: [^9\n]*\n)?$");
    }
  }
  OrvaneManager().requestPictureCode(secret, nullptr);
  expectDiscreet([&] { fakeSession().answer(failure); });
}

TEST_F(PrivacyDeathTest, ArgumentsAreNotPrinted) {
  using enum HTTPMethod;
  NetworkTool tool;
  const Parameters noText = {{secret, 1}};
  const Parameters noUTF8 = {{secret, secret + "\xFF"}};
  const Headers headers = {{secret, secret}};
  const std::function<void()> stops[] = {
      [] { OrvaneManager().requestLogin(secret + "\xFF", secret, nullptr); },
      [&] { tool.request(GET, "not a URL " + secret, std::nullopt); },
      [&] { tool.queryString(noText); },
      [&] { tool.queryString(noUTF8); },
      [&] { tool.addHeader(headers), tool.request(POST, secret, std::nullopt); },
      [&] { tool.setSession(nullptr), tool.requestJSON(GET, secret, std::nullopt, nullptr); },
      [] { fakeFacts().machine = secret + "\xFF", OVDeviceInfoTool::getDeviceName(); },
      OVDeviceInfoTool::getMEIDCode,
      [] { platform(), installPlatform({}); }};
  for (const auto& stop : stops) expectDiscreet(stop);
}

}  // namespace
}  // namespace orvane::test
