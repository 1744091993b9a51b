#include <gtest/gtest.h>

#include "orvane/client/GuardedSession.h"
#include "tests/support/FakeSession.h"

namespace orvane::test {
namespace {

TEST(GuardedSession, CancelsWhatItsSessionDoes) {
  const auto session = std::make_shared<FakeSession>();
  GuardedSession(session, "").cancelAllOperations();
  EXPECT_EQ(session->cancellations, 1);
}

}  // namespace
}  // namespace orvane::test
