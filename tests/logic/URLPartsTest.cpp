#include <gtest/gtest.h>

#include "orvane/platform/URLParts.h"

namespace orvane::test {
namespace {

TEST(URLParts, AreViewsOfTheText) {
  const std::pair<const char*, const char*> rows[] = {
      {"http://h.example/p", "http h.example 80"},
      {"HTTPS://h", "HTTPS h 443"},
      {"http://u:1@v@h:8080?a@b:9/", "http h 8080"},
      {"http://[::1]:81/", "http [::1] 81"},
      {"http://[::1]", "http [::1] 80"},
      {"http://[::1:81/", "http [::1:81 80"},
      {"http://h:#f", "http h 80"},
      {"aAzZ0+9-.://h", "aAzZ0+9-. h 80"},
      {"0a://h", "  80"},
      {"a_b://h", "  80"},
      {"://h", "  80"},
      {"//h/a:b", " h 80"},
      {"/p://h", "  80"},
      {"http:h", "http  80"},
      {"http://:81/", "http  81"},
      {"", "  80"},
  };
  for (const auto& [url, expected] : rows) {
    const URLParts parts = splitURL(url);
    const std::string text = std::string(parts.scheme) + " " + std::string(parts.host) + " ";
    EXPECT_EQ(text + std::string(parts.portOrDefault()), expected) << url;
  }
}

}  // namespace
}  // namespace orvane::test
