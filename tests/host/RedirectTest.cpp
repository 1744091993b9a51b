#include <gtest/gtest.h>
#include <string>
#include <variant>
#include <vector>

#include "adapters/host/Redirect.h"

namespace orvane {
namespace {

const std::string credentials = ", Authorization, cookie, Proxy-Authorization";
const std::string content = ", Content-Type, content-encoding, Content-Language, Content-Location, body";

/// Returns "METHOD URL" of the request that follows one with a body and all kinds of header fields, and what
/// it keeps of them. Returns the error's code if no request follows.
std::string redirected(const char* method, const char* from, int status, const char* location) {
  URLRequest request(from);
  request.setMethod(method);
  request.setBody({'b'});
  for (const char* name : {"X", "Authorization", "cookie", "Proxy-Authorization", "Content-Type",
                           "content-encoding", "Content-Language", "Content-Location"})
    request.addValue("v", name);
  const auto next = redirect(request, status, location);
  if (const auto* failure = std::get_if<SessionFailure>(&next))
    return std::to_string(makeSessionError(*failure, "")->code);
  const auto& followed = std::get<URLRequest>(next);
  std::string result = followed.method() + " " + followed.url();
  for (const HeaderField& field : followed.headers()) result += ", " + field.name;
  return followed.body() ? result + ", body" : result;
}

TEST(Redirect, DecidesWhatFollows) {
  struct Row {
    const char* method;
    const char* from;
    int status;
    const char* location;
    std::string expected;
  };
  const std::vector<Row> rows = {
      // Without the body, by GET.
      {"POST", "http://h/", 301, "http://h/n", "GET http://h/n, X" + credentials},
      {"POST", "http://h/", 302, "http://H:80/n", "GET http://H:80/n, X" + credentials},
      {"POST", "http://h/", 303, "http://h/n", "GET http://h/n, X" + credentials},
      {"PUT", "http://h/", 303, "http://h/n", "GET http://h/n, X" + credentials},
      // As it was.
      {"PUT", "http://h/", 302, "http://h/n", "PUT http://h/n, X" + credentials + content},
      {"POST", "http://h/", 307, "http://h/n", "POST http://h/n, X" + credentials + content},
      {"GET", "https://h/", 301, "https://h/n", "GET https://h/n, X" + credentials + content},
      // To another origin, without credentials.
      {"HEAD", "http://h/", 303, "http://g/", "HEAD http://g/, X" + content},
      {"POST", "http://h/", 308, "http://other/", "POST http://other/, X" + content},
      {"POST", "http://h/", 308, "http://h:81/", "POST http://h:81/, X" + content},
      {"POST", "http://h/", 308, "http://h@other/", "POST http://h@other/, X" + content},
      {"GET", "http://h/", 301, "https://h/", "GET https://h/, X" + content},
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
