#include <cstdlib>
#include <gtest/gtest.h>

#include "tests/support/TestPlatform.h"

namespace orvane::test {
namespace {

using PlatformDeathTest = OnFakes;

TEST_F(PlatformDeathTest, IsInstalledBeforeItsFirstUse) {
  const auto install = [] {
    const auto queue = std::make_shared<MainQueue>();
    installPlatform({.mainQueue = queue});
    std::exit(platform().mainQueue == queue && platform().globalQueue != queue ? 0 : 1);
  };
  EXPECT_EXIT(install(), testing::ExitedWithCode(0), "");
  const auto installLate = [] { platform(), installPlatform({}); };
  EXPECT_DEATH(installLate(), "^orvane: installPlatform: the platform is in use already\n$");
}

}  // namespace
}  // namespace orvane::test
