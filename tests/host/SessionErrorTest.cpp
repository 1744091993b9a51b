#include <gtest/gtest.h>

#include "adapters/host/SessionError.h"
#include "tests/support/errorsPage.h"

namespace orvane::test {
namespace {

TEST(SessionError, SaysWhatThePageSays) {
  const std::vector<Row> rows = rowsOfTheErrorsPage("code");
  for (const Row& row : rows) {
    const ErrorPtr error = makeSessionError(SessionErrorCode{std::stoi(row.at("code"))}, "u", "detail");
    EXPECT_EQ(*error->userInfo.at("NSLocalizedDescription").text(), row.at("sentence"));
    EXPECT_EQ(*error->userInfo.at("NSDebugDescription").text(), "detail");
  }
  EXPECT_EQ(rows.size(), 17U);
}

}  // namespace
}  // namespace orvane::test
