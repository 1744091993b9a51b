#include <gtest/gtest.h>

#include "orvane/orvane.h"
#include "orvane/testing/FakeService.h"

namespace orvane::test {
namespace {

using Call = FakeService::Call;
using Reply = FakeService::Reply;

TEST(FakeService, RepliesToEachCallAsToldAndToNothingElse) {
  FakeService& service = FakeService::installed({.failureWords = errorMessage});
  service.reset();
  service.reply(Call::picture, Reply::accepted({1, 2, 3}));
  service.reply(Call::code, Reply::refused(7, "Busy"));
  service.reply(Call::login, Reply::text("<html>"));
  std::string outcomes;
  const auto tell = [&](const std::string& call, const ErrorPtr& error) {
    outcomes += call + (error ? ": " + error->domain + " " + std::to_string(error->code) : "") + "\n";
  };
  OrvaneManager manager;
  manager.setAppClientId("client");
  manager.requestPictureCode("1", [&](const auto& data, const ErrorPtr& error) {
    tell("picture of " + std::to_string(data ? data->size() : 0), error);
  });
  manager.requestCode("1", "2", [&](const ErrorPtr& error) { tell("code", error); });
  manager.requestLogin("1", "3", [&](const auto&, const ErrorPtr& error) { tell("login", error); });
  manager.requestCode("4", "5", nullptr);
  NetworkTool().requestJSON(HTTPMethod::GET, "http://other.example/", std::nullopt,
                            [&](const auto&, const ErrorPtr& error) { tell("other", error); });
  service.settle();
  EXPECT_EQ(outcomes,
            "picture of 3\ncode: Busy 7\nlogin: The service's reply could not be read. 1\n"
            "other: NSURLErrorDomain -1003\n");

  const auto requests = service.requests();
  ASSERT_EQ(requests.size(), 4U);
  EXPECT_EQ(requests[0].call, Call::picture);
  EXPECT_EQ(requests[2].call, Call::login);
  EXPECT_EQ(requests[3].body, R"({"captcha":"5","mobile":"4"})");
  EXPECT_EQ(requests[3].clientId, "client");
}

}  // namespace
}  // namespace orvane::test
