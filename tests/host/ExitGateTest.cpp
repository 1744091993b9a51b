#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <pthread.h>
#include <thread>

#include "adapters/host/ExitGate.h"

namespace orvane::test {
namespace {

/// What a library keeps for a thread, and cleans up once the gate is about to close.
struct Kept {
  ~Kept() {
    while (!isClosing) std::this_thread::yield();
    for (int times = 0; times < 1000; ++times) std::this_thread::yield();
    isClean = true;
  }
  std::atomic<bool>& isClosing;
  std::atomic<bool>& isClean;
};

/// Closes the gate with a limit of a minute. Returns true if that took less.
bool closesInTime(ExitGate& gate) {
  const auto begun = std::chrono::steady_clock::now();
  gate.close(std::chrono::minutes(1));
  return std::chrono::steady_clock::now() - begun < std::chrono::minutes(1);
}

TEST(ExitGate, WaitsForWhatLibrariesCleanUpAtTheEndOfAThread) {
  ExitGate gate;
  { const ExitGate::Pass pass(gate); }  // Leaves nothing of this thread inside.
  // Makes the gate's own value before the library's, and so the one that the system cleans up first.
  std::thread first([&] { gate.enterUntilThreadEnds(); });
  first.join();
  pthread_key_t key{};
  pthread_key_create(&key, [](void* kept) { delete static_cast<Kept*>(kept); });
  std::atomic<bool> isEntered = false, isClosing = false, isClean = false;
  std::thread thread([&] {
    pthread_setspecific(key, new Kept{isClosing, isClean});
    gate.enterUntilThreadEnds();
    isEntered = true;
  });
  while (!isEntered) std::this_thread::yield();
  isClosing = true;
  EXPECT_TRUE(closesInTime(gate));
  EXPECT_TRUE(isClean);
  thread.join();
  pthread_key_delete(key);
}

TEST(ExitGate, DoesNotWaitForTheThreadThatClosesIt) {
  ExitGate gate;
  const ExitGate::Pass pass(gate);
  EXPECT_TRUE(closesInTime(gate));
}

}  // namespace
}  // namespace orvane::test
