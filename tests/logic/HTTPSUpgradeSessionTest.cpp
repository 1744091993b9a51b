#include <gtest/gtest.h>

#include "orvane/network/HTTPSUpgradeSession.h"
#include "tests/support/FakeSession.h"

namespace orvane::test {
namespace {

TEST(HTTPSUpgradeSession, UpgradesRequestsForItsHostsAndNothingElse) {
  const auto session = std::make_shared<FakeSession>();
  HTTPSUpgradeSession upgrading(session, {"Service.example", "[::1]"});
  const std::pair<const char*, const char*> rows[] = {
      {"http://service.example/p?q#f", "https://service.example/p?q#f"},
      {"HTTP://SERVICE.EXAMPLE", "https://SERVICE.EXAMPLE"},
      {"http://u:80@service.example:80/80", "https://u:80@service.example:443/80"},
      {"http://service.example:0080?80", "https://service.example:443?80"},
      {"http://service.example:/", "https://service.example:/"},
      {"http://service.example:8080/", "https://service.example:8080/"},
      {"http://[::1]:80/", "https://[::1]:443/"},
      // Unchanged.
      {"https://service.example:80/", "https://service.example:80/"},
      {"http://other.example/", "http://other.example/"},
      {"http://service.example.org/", "http://service.example.org/"},
      {"http://service.example@other.example/", "http://service.example@other.example/"},
      {"ftp://service.example/", "ftp://service.example/"},
      {"service.example", "service.example"},
      {"", ""}};
  for (const auto& [url, expected] : rows) {
    URLRequest request(url);
    request.setMethod("PUT");
    request.setBody({'b'});
    request.addValue("v", "n");
    bool isAnswered = false;
    upgrading.startDataTask(request, [&](const auto& result) { isAnswered = result.response.has_value(); });
    session->answer("");
    EXPECT_TRUE(isAnswered);
    const URLRequest& last = session->requests.back();
    EXPECT_EQ(last.url(), expected);
    EXPECT_TRUE(last.method() == "PUT" && last.body() == request.body() &&
                last.headers() == request.headers());
  }
  upgrading.cancelAllOperations();
  EXPECT_EQ(session->cancellations, 1);
}

}  // namespace
}  // namespace orvane::test
