#include <gtest/gtest.h>
#include <regex>

#include "orvane/client/ErrorKind.h"
#include "tests/support/errorsPage.h"

namespace orvane::test {
namespace {

TEST(ErrorKind, IsWhatThePageSays) {
  const std::vector<Row> rows = rowsOfTheErrorsPage("kind");
  const std::regex range("(-\\d+)(?: to (-\\d+))?");
  std::size_t codes = 0;
  for (const Row& row : rows) {
    const std::string& errors = row.at("errors");
    for (std::sregex_iterator found(errors.begin(), errors.end(), range), end; found != end; ++found) {
      const int last = std::stoi((*found)[(*found)[2].matched ? 2 : 1]);
      for (int code = std::stoi((*found)[1]); code >= last; --code, ++codes) {
        const Error error{"NSURLErrorDomain", code, {{"NSErrorFailingURLStringKey", "http://a"}}};
        EXPECT_EQ(rawValue(errorKind(error)), row.at("kind")) << code;
        EXPECT_EQ(errorMessage(error), row.at("sentence")) << code;
      }
    }
  }
  EXPECT_EQ(rows.size(), errorKindNames.size());
  EXPECT_EQ(codes, 28U);
}

TEST(ErrorKind, OfARefusalIsNotToldByItsText) {
  using enum ErrorKind;
  const char* const domain = "com.brovent.error";
  const char* const late = "The service took too long to answer.";
  const std::tuple<Error, ErrorKind, std::string> rows[] = {
      {{"NSURLErrorDomain", -1004, {}}, refused, "NSURLErrorDomain"},
      {{domain, -1, {}}, refused, domain},
      {{"", 7, {}}, refused, "The service refused the request."},
      {{"NSURLErrorDomain", -1001, {}, std::make_shared<int>()}, timedOut, late},
      {{"NSURLErrorDomain", -1001, {{"NSLocalizedDescription", "Too late."}}}, timedOut, "Too late."},
      {{"NSURLErrorDomain", -1001, {{"NSLocalizedDescription", 7}}}, timedOut, late},
      {{"NSURLErrorDomain", -1199, {{"a", "b"}}}, other, "The request failed."},
      {{"NSURLErrorDomain", -1207, {{"a", "b"}}}, other, "The request failed."},
      {{"Another", -1001, {{"a", "b"}}}, other, "The request failed."},
      {{domain, -1, {{"error", "反序列化失败"}}}, notReadable, "The service's reply could not be read."},
      {{domain, -1, {{"error", "请求建立失败"}}}, notSent, "The request could not be sent."},
  };
  for (const auto& [error, expected, sentence] : rows) {
    EXPECT_EQ(errorKind(error), expected) << errorDescription(error);
    EXPECT_EQ(errorMessage(error), sentence) << errorDescription(error);
  }
}

}  // namespace
}  // namespace orvane::test
