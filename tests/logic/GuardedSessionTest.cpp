#include <gtest/gtest.h>

#include "orvane/client/GuardedSession.h"
#include "orvane/client/serviceBaseURL.h"
#include "tests/support/FakeSession.h"

namespace orvane::test {
namespace {

TEST(GuardedSession, PutsARefusalInThePlaceOfAFailedLogin) {
  const auto session = std::make_shared<FakeSession>();
  GuardedSession guarded(session, "no");
  std::optional<HTTPResponse> response;
  guarded.startDataTask(URLRequest(std::string(serviceBaseURL()) + "/tenant/submitVerifyCode"),
                        [&](const auto& result) { response = result.response; });
  session->answer(failed({}));
  EXPECT_EQ(response.value().statusCode, 200);
  guarded.startDataTask(session->requests.front(), nullptr);
  session->answer(failed({}));
  guarded.cancelAllOperations();
  EXPECT_EQ(session->cancellations, 1);
}

}  // namespace
}  // namespace orvane::test
