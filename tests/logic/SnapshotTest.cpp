#include <gtest/gtest.h>
#include <thread>

#include "orvane/base/Snapshot.h"

namespace orvane::test {
namespace {

TEST(Snapshot, ReadersSeeWholeValuesAndNothingLeaks) {
  using Pair = std::pair<int, int>;
  Snapshot<std::shared_ptr<const Pair>> snapshot;
  EXPECT_FALSE(snapshot.load());
  const auto first = std::make_shared<const Pair>(0, 0);
  snapshot.storeIfEmpty(first);
  snapshot.storeIfEmpty(nullptr);
  EXPECT_EQ(snapshot.load(), first);
  const auto write = [&] {
    for (int i = 0; i < 4000; ++i) snapshot.store(std::make_shared<const Pair>(i, i));
  };
  std::thread writer(write), otherWriter(write);
  for (int i = 0; i < 4000; ++i) {
    const auto pair = *snapshot.load();
    EXPECT_EQ(pair->first, pair->second);
  }
  writer.join();
  otherWriter.join();
  const std::weak_ptr<const Pair> replaced = *snapshot.load();
  snapshot.store(first);
  EXPECT_TRUE(replaced.expired());
}

/// Replaces itself twice in `snapshot`, if there is one, while it is read.
struct ReplacedByReader {
  ReplacedByReader(std::shared_ptr<int> kept, Snapshot<ReplacedByReader>* snapshot)
      : kept(std::move(kept)), snapshot(snapshot) {}
  ReplacedByReader(ReplacedByReader&&) = default;
  ReplacedByReader(const ReplacedByReader& other) : kept(other.kept) {
    for (int i = 0; other.snapshot && i < 2; ++i) other.snapshot->store({kept, nullptr});
  }

  std::shared_ptr<int> kept;
  Snapshot<ReplacedByReader>* snapshot = nullptr;
};

TEST(Snapshot, ReleasesWhatWasReplacedDuringARead) {
  const auto kept = std::make_shared<int>();
  {
    Snapshot<ReplacedByReader> snapshot;
    snapshot.store({kept, &snapshot});
    EXPECT_EQ(snapshot.load()->kept.use_count(),
              5);  // The current value, two replaced ones, a copy, and this test's.
  }
  EXPECT_EQ(kept.use_count(), 1);
}

}  // namespace
}  // namespace orvane::test
