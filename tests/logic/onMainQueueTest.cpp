#include <gtest/gtest.h>
#include <memory>

#include "orvane/client/ErrorKind.h"
#include "orvane/network/NetworkTool.h"
#include "orvane/platform/onMainQueue.h"
#include "tests/support/TestPlatform.h"

namespace orvane::test {
namespace {

class OnMainQueueTest : public OnFakes {};

TEST_F(OnMainQueueTest, DefersACallbackWithCapturesThatOnlyMove) {
  std::string said;
  auto say = [&said, word = std::make_unique<std::string>("failed: ")](const auto&, const ErrorPtr& error) {
    said = *word + message(*error);
  };
  NetworkTool().requestJSON(HTTPMethod::GET, "", std::nullopt, onMainQueue(std::move(say)));
  EXPECT_EQ(said, "");
  fakeMainQueue().run();
  EXPECT_EQ(said, "failed: The request could not be sent.");
}

}  // namespace
}  // namespace orvane::test
