#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <pthread.h>
#include <thread>

#include "adapters/host/ExitGate.h"

namespace orvane::test {
namespace {

/// What a library keeps for a thread. Its clean-up takes until the test says so.
struct Kept {
  ~Kept() {
    begun.set_value();
    mayEnd.get_future().wait();
  }
  std::promise<void>& begun;
  std::promise<void>& mayEnd;
};

/// Closes the gate. Returns true if that took less than `limit`.
bool closesWithin(std::chrono::milliseconds limit, ExitGate& gate) {
  const auto begun = std::chrono::steady_clock::now();
  gate.close(limit);
  return std::chrono::steady_clock::now() - begun < limit;
}

TEST(ExitGate, WaitsForWhatLibrariesCleanUpAtTheEndOfAThread) {
  ExitGate gate;
  { const ExitGate::Pass pass(gate); }  // Leaves nothing of this thread inside.
  // Makes the gate's own value before the library's, and so the one that the system cleans up first.
  std::thread first([&] { gate.enterUntilThreadEnds(); });
  first.join();
  pthread_key_t key{};
  pthread_key_create(&key, [](void* kept) { delete static_cast<Kept*>(kept); });
  std::promise<void> begun, mayEnd;
  std::thread thread([&] {
    pthread_setspecific(key, new Kept{begun, mayEnd});
    gate.enterUntilThreadEnds();
  });
  begun.get_future().wait();
  EXPECT_FALSE(closesWithin(std::chrono::milliseconds(10), gate));
  mayEnd.set_value();
  EXPECT_TRUE(closesWithin(std::chrono::minutes(1), gate));
  thread.join();
  pthread_key_delete(key);
}

TEST(ExitGate, DoesNotWaitForTheThreadThatClosesIt) {
  ExitGate gate;
  const ExitGate::Pass pass(gate);
  EXPECT_TRUE(closesWithin(std::chrono::minutes(1), gate));
}

}  // namespace
}  // namespace orvane::test
