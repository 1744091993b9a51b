#include <chrono>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "orvane/platform/MainQueue.h"
#include "orvane/platform/PostingQueue.h"

namespace orvane::test {
namespace {

TEST(MainQueue, RunsInOrderUntilStopped) {
  MainQueue queue;
  std::vector<int> ran;
  queue.async([&] {
    ran.push_back(1);
    queue.async([&] { ran.push_back(3); });
  });
  queue.async([&] { ran.push_back(2); });
  EXPECT_EQ(queue.runPending(), 2U);
  EXPECT_FALSE(queue.run(std::chrono::milliseconds(0)));
  queue.async([&] { queue.stop(); });
  queue.async([&] { ran.push_back(4); });
  queue.run();
  EXPECT_EQ(ran, (std::vector<int>{1, 2, 3}));
  queue.stop();
  EXPECT_TRUE(queue.run(std::chrono::milliseconds::max()));
  EXPECT_FALSE(MainQueue().run(std::chrono::milliseconds(0)));
  const std::function<void()> again = [&] { queue.async(again); };
  again();
  EXPECT_FALSE(queue.run(std::chrono::milliseconds(1)));
  const auto other = std::async(std::launch::async, [&] { queue.async([&] { queue.stop(); }); });
  EXPECT_TRUE(queue.run(std::chrono::hours(1)));
  EXPECT_EQ(ran, (std::vector<int>{1, 2, 3, 4}));
}

TEST(MainQueue, KeepsTheWorkAfterOneThatThrows) {
  MainQueue queue;
  std::string ran;
  const auto fail = [] { throw std::runtime_error("a function"); };
  queue.async([&] { ran += "1"; });
  queue.async(fail);
  queue.async([&] { ran += "2"; });
  queue.async(fail);
  queue.async([&] {
    ran += "3";
    queue.runPending();
  });
  queue.async([&] { ran += "4"; });
  EXPECT_THROW(queue.run(), std::runtime_error);
  EXPECT_EQ(ran, "1");
  EXPECT_THROW(queue.runPending(), std::runtime_error);
  EXPECT_EQ(ran, "12");
  EXPECT_EQ(queue.runPending(), 1U);
  EXPECT_EQ(ran, "1234");
}

TEST(PostingQueue, DropsWhatComesAfterItsEndAndWaitsForWhatIsUnderWay) {
  std::promise<void> posting, mayReturn;
  std::vector<Work> posted;
  PostingQueue queue([&](Work work) {
    posting.set_value();
    mayReturn.get_future().wait();
    posted.push_back(std::move(work));
  });
  std::thread poster([&] { queue.async([] {}); });
  posting.get_future().wait();
  std::thread closer([&] {
    queue.close();
    EXPECT_EQ(posted.size(), 1U);
  });
  mayReturn.set_value();
  poster.join();
  closer.join();
  const auto captured = std::make_shared<int>();
  queue.async([captured] {});
  EXPECT_EQ(posted.size(), 1U);
  EXPECT_EQ(captured.use_count(), 1);
}

TEST(DispatchQueue, AGroupNotifiesAfterItsWork) {
  const auto notified = std::make_shared<MainQueue>();
  MainQueue queue;
  int step = 0;
  queue.asyncGroup([&] { EXPECT_EQ(++step, 1); }, notified, [&] { EXPECT_EQ(++step, 2); });
  EXPECT_EQ(notified->runPending(), 0U);
  EXPECT_EQ(queue.runPending() + notified->runPending(), 2U);
  EXPECT_EQ(step, 2);
}

}  // namespace
}  // namespace orvane::test
