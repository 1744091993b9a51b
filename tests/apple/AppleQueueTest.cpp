// A group that notifies a queue of libdispatch, and one that notifies a queue of another kind.

#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <thread>

#include "orvane/host/hostMainQueue.h"
#include "orvane/platform/makeDefaultPlatform.h"

namespace orvane {
namespace {

TEST(AppleQueue, NotifiesOnceItsGroupIsOver) {
  const Platform platform = makeDefaultPlatform();
  const std::shared_ptr<DispatchQueue> own(&hostMainQueue(), [](DispatchQueue*) {});
  for (const auto& notified : {platform.mainQueue, own}) {
    std::promise<void> go;
    std::atomic<bool> isOver = false;
    platform.globalQueue->asyncGroup(
        [&] {
          go.get_future().wait();
          isOver = true;
        },
        notified,
        [&, here = std::this_thread::get_id()] {
          EXPECT_TRUE(isOver);
          EXPECT_EQ(std::this_thread::get_id(), here);
          hostMainQueue().stop();
        });
    go.set_value();
    hostMainQueue().run();
  }
}

}  // namespace
}  // namespace orvane
