#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "adapters/host/Redirect.h"

namespace orvane {
namespace {

/// "VERB body URL" and a letter for each header field that went along, or the error's code.
std::string redirected(const char* method, const char* from, int status, const char* location) {
  URLRequest request(from);
  request.setMethod(method);
  request.setBody({'b'});
  const std::pair<const char*, char> fields[] = {{"Authorization", 'A'},       {"cookie", 'C'},
                                                 {"Proxy-Authorization", 'P'}, {"Content-Type", 't'},
                                                 {"content-encoding", 'e'},    {"Content-Language", 'l'},
                                                 {"Content-Location", 'o'},    {"X", 'X'}};
  for (const auto& [name, letter] : fields) request.addValue("v", name);
  const auto next = redirect(request, status, location);
  if (const auto* code = std::get_if<SessionErrorCode>(&next)) return std::to_string(static_cast<int>(*code));
  const auto& followed = std::get<URLRequest>(next);
  std::string text = followed.method() + (followed.body() ? " b " : " - ") + followed.url() + " ";
  for (const auto& [name, letter] : fields) {
    if (followed.value(name)) text.push_back(letter);
  }
  return text;
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
      {"POST", "http://h/", 301, "http://h/n", "GET - http://h/n ACPX"},
      {"POST", "http://h/", 302, "http://H:80/n", "GET - http://H:80/n ACPX"},
      {"POST", "http://h/", 303, "http://h/n", "GET - http://h/n ACPX"},
      {"PUT", "http://h/", 303, "http://h/n", "GET - http://h/n ACPX"},
      {"HEAD", "http://h/", 303, "http://g/", "HEAD b http://g/ teloX"},
      {"PUT", "http://h/", 302, "http://h/n", "PUT b http://h/n ACPteloX"},
      {"POST", "http://h/", 307, "http://h/n", "POST b http://h/n ACPteloX"},
      {"POST", "http://h/", 308, "http://other/", "POST b http://other/ teloX"},
      {"POST", "http://h/", 308, "http://h:81/", "POST b http://h:81/ teloX"},
      {"POST", "http://h/", 308, "http://h@other/", "POST b http://h@other/ teloX"},
      {"GET", "http://h/", 301, "https://h/", "GET b https://h/ teloX"},
      {"GET", "https://h/", 301, "https://h/n", "GET b https://h/n ACPteloX"},
      {"GET", "https://h/", 301, "http://h/", "-1002"},
      {"GET", "http://h/", 301, "file:///etc/passwd", "-1002"},
      {"GET", "http://h/", 301, "ftp://h/", "-1002"},
      {"GET", "http://h/", 301, "nowhere", "-1002"}};
  for (const auto& [method, from, status, location, expected] : rows)
    EXPECT_EQ(redirected(method, from, status, location), expected) << status << " " << location;
}

}  // namespace
}  // namespace orvane
