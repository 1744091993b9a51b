// The memory that calls take: what `operator new` hands out, on all threads. libcurl's own is left out.

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <malloc.h>
#include <new>
#include <thread>

#include "bench/Rounds.h"
#include "bench/Server.h"
#include "bench/Service.h"
#include "bench/byHand.h"
#include "bench/byLibrary.h"
#include "orvane/orvane.h"

namespace orvane::bench {
namespace {

std::atomic<std::size_t> inUse = 0;
std::atomic<std::size_t> peak = 0;

/// Returns the most bytes that were in use at a time during the call, beyond those in use before.
Figures peakBytes(const std::function<void()>& call) {
  const std::size_t before = inUse;
  peak = before;
  call();
  return {static_cast<double>(peak - before)};
}

/// Starts calls, waits until no thread allocates or releases anything, and returns the bytes that they take.
std::size_t bytesOfCalls(std::size_t count) {
  const std::size_t start = inUse;
  for (std::size_t i = 0; i < count; ++i)
    OrvaneManager::shareManager().requestCode(mobile, pictureText, nullptr);
  for (std::size_t before = 0; before != inUse;) {
    before = inUse;
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
  }
  return inUse - start;
}

}  // namespace
}  // namespace orvane::bench

void* operator new(std::size_t size) {
  using namespace orvane::bench;
  void* const block = std::malloc(size);
  if (!block) throw std::bad_alloc();
  const std::size_t now = inUse += malloc_usable_size(block);
  std::size_t most = peak;
  while (most < now && !peak.compare_exchange_weak(most, now)) {
  }
  return block;
}

void operator delete(void* block) noexcept {
  orvane::bench::inUse -= malloc_usable_size(block);
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  operator delete(block);
}

int main() {
  using namespace orvane::bench;
  const Server server;
  installBenchPlatform(server.port());
  const Post curl = curlEasy(server.port());
  requestCodes(1);  // Makes the connection.
  requestCode(curl);
  const Figures byHand = peakBytes([&] { signIn(curl); });
  printRows("memory of a sign-in, at most", peakBytes([] { signIn(); }),
            {{"curl easy, nlohmann", byHand, {Goal::Ratio::speedup}}}, Unit::bytes);

  server.freeze();
  bytesOfCalls(64);  // More than have a connection: the rest waits like all that come later.
  constexpr std::size_t count = 10'000;
  const double each = static_cast<double>(bytesOfCalls(count)) / static_cast<double>(count);
  printRows("memory of a waiting call, beyond its body", {each - static_cast<double>(codeBody().size())}, {},
            Unit::bytes, 1024);
  std::_Exit(0);  // With its calls still waiting.
}
