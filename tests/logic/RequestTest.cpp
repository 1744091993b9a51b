#include <gtest/gtest.h>

#include "orvane/network/NetworkTool.h"
#include "tests/support/TestPlatform.h"

namespace orvane {
namespace {

std::string text(const std::optional<Bytes>& body) {
  return body ? std::string(body->begin(), body->end()) : "no body";
}

std::string headerLines(const URLRequest& request) {
  std::string lines;
  for (const auto& [name, value] : request.headers()) lines += name + ": " + value + "\n";
  return lines;
}

TEST(HTTPMethod, HasTextRawValues) {
  using enum HTTPMethod;
  for (const auto& [method, name] : {std::pair(GET, "GET"), {POST, "POST"}, {JSON_POST, "JSON_POST"}}) {
    EXPECT_EQ(rawValue(method), name);
    EXPECT_EQ(fromRawValue<HTTPMethod>(name), method);
  }
  for (const char* other : {"post", "PUT", "", "GET "})
    EXPECT_EQ(fromRawValue<HTTPMethod>(other), std::nullopt);
  EXPECT_EQ(hashValue(GET), 0U);
  EXPECT_EQ(hashValue(JSON_POST), 2U);
}

TEST(Request, IsBuiltByKind) {
  struct Row {
    HTTPMethod method;
    const char* url;
    std::optional<Parameters> parameters;
    const char* expectedURL;
    const char* expectedMethod;
    const char* expectedBody;
  };
  using enum HTTPMethod;
  const std::vector<Row> rows = {
      {GET, "http://h/p", std::nullopt, "http://h/p", "GET", "no body"},
      {GET, "http://h/p", Parameters{}, "http://h/p?", "GET", "no body"},
      {GET, "http://h/p?a=b", Parameters{{"k", "v"}, {"l", "w"}}, "http://h/p?a=b?k=v&l=w", "GET", "no body"},
      {POST, "http://h/p", Parameters{{"k", "v x"}}, "http://h/p", "POST", "k=v%20x"},
      {POST, "http://h/p", Parameters{}, "http://h/p", "POST", ""},
      {JSON_POST, "http://h/p", std::nullopt, "http://h/p", "POST", "no body"},
      {JSON_POST, "http://h/p", Parameters{}, "http://h/p", "POST", "no body"},
      {JSON_POST, "http://h/p", Parameters{{"k", Array{1, 2.5, "\"", nullptr, true}}}, "http://h/p", "POST",
       R"({"k":[1,2.5,"\"",null,true]})"}};
  NetworkTool tool;
  for (const Row& row : rows) {
    const std::optional<URLRequest> request = tool.request(row.method, row.url, row.parameters);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->url(), row.expectedURL);
    EXPECT_EQ(request->method(), row.expectedMethod);
    EXPECT_EQ(text(request->body()), row.expectedBody);
    EXPECT_EQ(headerLines(*request), "");
  }
}

TEST(Request, IsAbsentWithoutURLOrPostParameters) {
  NetworkTool tool;
  EXPECT_FALSE(tool.request(HTTPMethod::POST, "http://h/", std::nullopt));
  tool.addHeader({{"A", "1"}});
  for (const HTTPMethod method : {HTTPMethod::GET, HTTPMethod::POST, HTTPMethod::JSON_POST})
    EXPECT_FALSE(tool.request(method, "", Parameters{{"k", "v"}}));
}

TEST(Request, CarriesTheLastHeaderSetThatHeldAnything) {
  NetworkTool tool;
  const auto headers = [&tool] {
    return headerLines(*tool.request(HTTPMethod::GET, "http://h/", std::nullopt));
  };
  tool.addHeader({{"A", "1"}, {"B", "2"}});
  EXPECT_EQ(headers(), "A: 1\nB: 2\n");
  tool.addHeader({{"C", ""}});
  EXPECT_EQ(headers(), "C: \n");
  tool.addHeader({});
  EXPECT_EQ(headers(), "C: \n");
}

TEST(Request, NeverHoldsAHeaderThatWouldBreakOut) {
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
  EXPECT_EQ(headerLines(request), "Good: 1,2\nx-!#$%&'*+.^_`|~9: \t é\n");
  request.setMethod("GET / HTTP/1.1\r\nX:");
  request.setMethod("");
  EXPECT_EQ(request.method(), "GET");
}

TEST(QueryString, EncodesValuesAndLeavesKeys) {
  NetworkTool tool;
  EXPECT_EQ(tool.queryString(std::nullopt), std::nullopt);
  const std::vector<std::pair<Parameters, std::string>> rows = {
      {{}, ""},
      {{{"a key&", ""}}, "a key&="},
      {{{"a", "azAZ09"}, {"b", "-._~ &=+%/\"\x7F\x01"}},
       "a=azAZ09&b=%2D%2E%5F%7E%20%26%3D%2B%25%2F%22%7F%01"},
      {{{"k", "中a文 😀€"}}, "k=中a文%20%F0%9F%98%80%E2%82%AC"},
      {{{"k", std::string_view("\0", 1)}}, "k=%00"}};
  for (const auto& [parameters, expected] : rows) EXPECT_EQ(tool.queryString(parameters), expected);
}

TEST(Request, GoesThroughAnOverriddenQueryString) {
  struct Tool : NetworkTool {
    std::optional<std::string> queryString(const std::optional<Parameters>&) override { return "own"; }
  } tool;
  EXPECT_EQ(tool.request(HTTPMethod::GET, "http://h/", std::nullopt)->url(), "http://h/?own");
  EXPECT_EQ(text(tool.request(HTTPMethod::POST, "http://h/", std::nullopt)->body()), "own");
}

TEST(RequestDeathTest, StopsOnProgrammingErrors) {
  NetworkTool tool;
  using enum HTTPMethod;
  const Parameters noText = {{"k", 7}};
  const Parameters noUTF8 = {{"k", "\xFF"}};
  const Parameters noNumber = {{"k", std::numeric_limits<double>::infinity()}};
  EXPECT_DEATH(tool.request(GET, "not a url", std::nullopt),
               "^orvane: request: the text given as URL is not a URL\n$");
  EXPECT_DEATH(tool.request(JSON_POST, "not a url", std::nullopt), "is not a URL");
  EXPECT_DEATH(tool.request(POST, "not a url", Parameters{}), "is not a URL");
  EXPECT_DEATH(tool.request(GET, "http://h/", Parameters{{"a key", "v"}}), "is not a URL");
  EXPECT_DEATH(tool.request(JSON_POST, "http://h/", noUTF8), "cannot be represented in JSON");
  EXPECT_DEATH(tool.request(JSON_POST, "http://h/", noNumber), "cannot be represented in JSON");
  EXPECT_DEATH(tool.request(GET, "http://h/", noText), "value is not a text");
  EXPECT_DEATH(tool.queryString(noUTF8), "value is not UTF-8");
  tool.addHeader({{"A", "1"}});
  EXPECT_DEATH(tool.request(POST, "http://h/", std::nullopt), "POST without parameters");
}

}  // namespace
}  // namespace orvane
