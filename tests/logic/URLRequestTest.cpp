#include <gtest/gtest.h>

#include "orvane/platform/URLRequest.h"

namespace orvane::test {
namespace {

TEST(URLRequest, NeverHoldsAHeaderThatWouldBreakOut) {
  using namespace std::string_literals;
  URLRequest request("http://h/");
  for (const std::string& name : {""s, "A B"s, "A:"s, "A\r\nB"s, "A\0"s, "\xC3\xA9"s, "Host"s,
                                  "content-LENGTH"s, "Connection"s, "Transfer-Encoding"s}) {
    request.addValue("v", name);
  }
  for (const std::string& value : {"a\r\nB: c"s, "a\n"s, "\r"s, "a\0b"s}) request.addValue(value, "Bad");
  request.addValue("1", "Good");
  request.addValue("\t é", "x-!#$%&'*+.^_`|~9");
  request.addValue("2", "gOOD");
  ASSERT_EQ(request.headers().size(), 2U);
  EXPECT_EQ(request.headers()[0], (HeaderField{"Good", "1,2"}));
  EXPECT_EQ(request.headers()[1], (HeaderField{"x-!#$%&'*+.^_`|~9", "\t é"}));
  request.setMethod("GET / HTTP/1.1\r\nX:");
  request.setMethod("");
  EXPECT_EQ(request.method(), "GET");
}

}  // namespace
}  // namespace orvane::test
