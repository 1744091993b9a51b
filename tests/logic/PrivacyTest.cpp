// What the library prints by itself, stops and the picture call's trace, holds nothing of what it was given.

#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

#include "orvane/orvane.h"
#include "tests/support/TestPlatform.h"

namespace orvane::test {
namespace {

// Mobile number, code, identifier and piece of a reply in one; nothing else that is printed has this digit.
const std::string secret = "99999999999";

void expectDiscreet(bool prints, const std::function<void()>& path) {
  const auto run = [&path] {
    std::fflush(stdout);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    path();
    std::exit(0);
  };
  const auto ends = [](int) { return true; };
  EXPECT_EXIT(run(), ends, prints ? "^orvane: [^9\n]*\n$" : "^$");
}

void call(char which) {
  OrvaneManager manager;
  manager.setAppClientId(secret);
  if (which == 'p') manager.requestPictureCode(secret, nullptr);
  if (which == 'c') manager.requestCode(secret, secret, nullptr);
  if (which == 'l') manager.requestLogin(secret, secret, nullptr);
}

TEST(PrivacyDeathTest, NothingPrintedHoldsWhatTheLibraryWasGiven) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  // Replies, the secret being at each S, and the calls of which each makes the library print.
  const std::pair<std::string, std::string> rows[] = {{"S", "pl"},
                                                      {"[S]", "pcl"},
                                                      {R"({"S":"S"})", "pcl"},
                                                      {R"({"code":"S","msg":"S"})", "pcl"},
                                                      {R"({"code":S,"msg":["S"]})", "pcl"},
                                                      {R"({"code":S,"msg":"S"})", ""},
                                                      {R"({"code":0,"msg":"S","data":"S"})", "p"},
                                                      {R"({"code":0,"msg":"S","data":[7,"S"]})", "p"},
                                                      {R"({"code":0,"msg":"S","data":[S]})", "p"}};
  std::vector<std::pair<DataTaskResult, std::string>> results = {{{}, "pcl"}};
  for (auto [text, printing] : rows) {
    while (text.find('S') != text.npos) text.replace(text.find('S'), 1, secret);
    results.push_back({{Bytes(text.begin(), text.end()), HTTPResponse{200}, nullptr}, printing});
  }
  const Error error = {"NSURLErrorDomain", -1004, {{"NSErrorFailingURLStringKey", secret}}};
  results.push_back({{std::nullopt, std::nullopt, std::make_shared<const Error>(error)}, "pl"});
  for (const auto& [result, printing] : results) {
    for (const char which : {'p', 'c', 'l'}) {
      expectDiscreet(printing.find(which) != printing.npos, [which, &result = result] {
        call(which);
        fakeSession().answer(result);
        fakeMainQueue().run();
      });
    }
  }

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
      [] { fakeReadings().facts.machine = secret + "\xFF", OVDeviceInfoTool::getDeviceName(); },
      OVDeviceInfoTool::getMEIDCode,
      [] { platform(), installPlatform({}); }};
  for (const auto& stop : stops) expectDiscreet(true, stop);
}

}  // namespace
}  // namespace orvane::test
