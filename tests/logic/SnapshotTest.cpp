#include <gtest/gtest.h>
#include <thread>

#include "orvane/base/Snapshot.h"

namespace orvane::test {
namespace {

TEST(Snapshot, ReadersSeeWholeValuesAndNothingLeaks) {
  using Pair = std::pair<int, int>;
  const auto first = std::make_shared<const Pair>(0, 0);
  std::weak_ptr<const Pair> replaced;
  Snapshot<std::shared_ptr<const Pair>> snapshot;
  EXPECT_FALSE(snapshot.load());
  snapshot.storeIfEmpty(first);
  snapshot.storeIfEmpty(nullptr);
  EXPECT_EQ(snapshot.load(), first);

  std::vector<std::thread> threads;
  for (int writer = 1; writer <= 2; ++writer) {
    threads.emplace_back([&, writer] {
      for (int i = 0; i < 2000; ++i) snapshot.store(std::make_shared<const Pair>(i * writer, i * writer));
    });
    threads.emplace_back([&] {
      for (int i = 0; i < 2000; ++i) {
        const auto pair = *snapshot.load();
        EXPECT_EQ(pair->first, pair->second);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  replaced = *snapshot.load();
  snapshot.store(first);
  EXPECT_TRUE(replaced.expired());
}

}  // namespace
}  // namespace orvane::test
