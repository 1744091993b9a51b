#include <gtest/gtest.h>

#include "orvane/network/HTTPSUpgradeSession.h"
#include "tests/support/FakeSession.h"

namespace orvane::test {
namespace {

TEST(HTTPSUpgradeSession, UpgradesRequestsForItsHostsAndNothingElse) {
  const auto session = std::make_shared<FakeSession>();
  int calls = 0;
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
    upgrading.startDataTask(request, [&](const auto&) { ++calls; });
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

}  // namespace
}  // namespace orvane::test
