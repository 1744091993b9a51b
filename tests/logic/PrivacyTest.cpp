// What the library prints by itself, the line of a stop and the picture call's trace, holds nothing of what it was given.

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

#include "orvane/orvane.h"
#include "tests/support/TestPlatform.h"

namespace orvane::test {
namespace {

// Mobile number, code, identifier and piece of a reply in one. No text of the library has this digit.
const std::string secret = "99999999999";

class PrivacyDeathTest : public OnFakes {
 protected:
  /// Expects that `path` prints exactly one line, without the secret, or with `prints` false none.
  static void expectDiscreet(const std::function<void()>& path, bool prints = true) {
    const auto run = [&path] {
      std::fflush(stdout);
      dup2(STDERR_FILENO, STDOUT_FILENO);
      path();
      std::_Exit(0);  // What is printed has been flushed.
    };
    EXPECT_EXIT(
        run(), [](int) { return true; }, prints ? "^orvane: [^9\n]*\n$" : "^$");
  }
};

TEST_F(PrivacyDeathTest, RepliesAreNotPrinted) {
  using Call = void (*)(OrvaneManager&);
  const Call picture = [](OrvaneManager& manager) { manager.requestPictureCode(secret, nullptr); };
  const Call code = [](OrvaneManager& manager) { manager.requestCode(secret, secret, nullptr); };
  const Call login = [](OrvaneManager& manager) { manager.requestLogin(secret, secret, nullptr); };
  struct Row {
    std::vector<Call> printing;
    DataTaskResult result;
  };
  std::vector<Row> rows = {
      {{picture, code, login}, {}},
      {{picture, login}, failed({"NSURLErrorDomain", -1004, {{"NSErrorFailingURLStringKey", secret}}})}};
  // The secret stands in the place of each S.
  const std::pair<std::vector<Call>, std::vector<std::string>> replies[] = {
      {{picture, code, login},
       {"[S]", R"({"S":"S"})", R"({"code":"S","msg":"S"})", R"({"code":S,"msg":["S"]})"}},
      {{picture, login}, {"S"}},
      {{picture},
       {R"({"code":0,"msg":"S","data":"S"})", R"({"code":0,"msg":"S","data":[7,"S"]})",
        R"({"code":0,"msg":"S","data":[S]})"}},
      {{}, {R"({"code":S,"msg":"S"})"}}};
  for (const auto& [printing, texts] : replies) {
    for (std::string text : texts) {
      while (text.find('S') != text.npos) text.replace(text.find('S'), 1, secret);
      rows.push_back({printing, replied(text)});
    }
  }
  for (const auto& [printing, result] : rows) {
    for (const Call call : {picture, code, login}) {
      const auto answered = [call, &result = result] {
        OrvaneManager manager;
        manager.setAppClientId(secret);
        call(manager);
        fakeSession().answer(result);
        fakeMainQueue().run();
      };
      expectDiscreet(answered, std::ranges::count(printing, call) > 0);
    }
  }
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
