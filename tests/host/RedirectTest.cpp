#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "adapters/host/Redirect.h"

namespace orvane {
namespace {

const std::vector<std::string> credentials = {"Authorization", "cookie", "Proxy-Authorization"};
const std::vector<std::string> aboutTheBody = {"Content-Type", "content-encoding", "Content-Language",
                                               "Content-Location"};

/// Returns "METHOD URL" of the request that follows one with a body and all kinds of header fields, and which
/// of them it keeps. Returns the error's code if no request follows.
std::string redirected(const char* method, const char* from, int status, const char* location) {
  URLRequest request(from);
  request.setMethod(method);
  request.setBody({'b'});
  request.addValue("v", "X");
  for (const auto* group : {&credentials, &aboutTheBody})
    for (const std::string& name : *group) request.addValue("v", name);
  const auto next = redirect(request, status, location);
  if (const auto* failure = std::get_if<SessionFailure>(&next))
    return std::to_string(makeSessionError(*failure, "")->code);
  const auto& followed = std::get<URLRequest>(next);
  EXPECT_TRUE(followed.value("X"));
  const auto keeps = [&](const std::vector<std::string>& names) {
    std::size_t kept = 0;
    for (const std::string& name : names) kept += followed.value(name) ? 1U : 0U;
    EXPECT_TRUE(kept == 0 || kept == names.size()) << location;
    return kept > 0;
  };
  const bool keepsBody = keeps(aboutTheBody);
  EXPECT_EQ(followed.body().has_value(), keepsBody);
  return followed.method() + " " + followed.url() + (keepsBody ? ", body" : "") +
         (keeps(credentials) ? ", credentials" : "");
}

TEST(Redirect, DecidesWhatFollows) {
  struct Row {
    const char* method;
    const char* from;
    int status;
    const char* location;
    const char* expected;
  };
  const std::vector<Row> rows = {
      // Without the body, by GET.
      {"POST", "http://h/", 301, "http://h/n", "GET http://h/n, credentials"},
      {"POST", "http://h/", 302, "http://H:80/n", "GET http://H:80/n, credentials"},
      {"POST", "http://h/", 303, "http://h/n", "GET http://h/n, credentials"},
      {"PUT", "http://h/", 303, "http://h/n", "GET http://h/n, credentials"},
      // As it was.
      {"PUT", "http://h/", 302, "http://h/n", "PUT http://h/n, body, credentials"},
      {"POST", "http://h/", 307, "http://h/n", "POST http://h/n, body, credentials"},
      {"GET", "https://h/", 301, "https://h/n", "GET https://h/n, body, credentials"},
      // To another origin, without credentials.
      {"HEAD", "http://h/", 303, "http://g/", "HEAD http://g/, body"},
      {"POST", "http://h/", 308, "http://other/", "POST http://other/, body"},
      {"POST", "http://h/", 308, "http://h:81/", "POST http://h:81/, body"},
      {"POST", "http://h/", 308, "http://h@other/", "POST http://h@other/, body"},
      {"GET", "http://h/", 301, "https://h/", "GET https://h/, body"},
      // Not at all.
      {"GET", "https://h/", 301, "http://h/", "-1002"},
      {"GET", "http://h/", 301, "file:///etc/passwd", "-1002"},
      {"GET", "http://h/", 301, "ftp://h/", "-1002"},
      {"GET", "http://h/", 301, "nowhere", "-1002"}};
  for (const auto& [method, from, status, location, expected] : rows)
    EXPECT_EQ(redirected(method, from, status, location), expected) << status << " " << location;
}

TEST(Redirect, IsAskedForByFiveStatuses) {
  std::vector<int> statuses;
  for (int status = 100; status < 600; ++status)
    if (isRedirect(status)) statuses.push_back(status);
  EXPECT_EQ(statuses, (std::vector<int>{301, 302, 303, 307, 308}));
}

}  // namespace
}  // namespace orvane
