#include <gtest/gtest.h>

#include "adapters/host/SessionError.h"
#include "tests/support/errorsPage.h"

namespace orvane::test {
namespace {

TEST(SessionError, SaysWhatThePageSays) {
  const std::vector<Row> rows = rowsOfTheErrorsPage("code");
  ASSERT_EQ(rows.size(), sessionFailureCount);
  for (std::size_t at = 0; at < sessionFailureCount; ++at) {
    SCOPED_TRACE(rows[at].at("sentence"));
    const ErrorPtr error = makeSessionError(static_cast<SessionFailure>(at), "u", "detail");
    EXPECT_EQ(std::to_string(error->code), rows[at].at("code"));
    EXPECT_EQ(*error->userInfo.at("NSLocalizedDescription").string(), rows[at].at("sentence"));
    EXPECT_EQ(*error->userInfo.at("NSDebugDescription").string(), "detail");
  }
}

}  // namespace
}  // namespace orvane::test
