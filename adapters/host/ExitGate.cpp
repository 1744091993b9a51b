#include "adapters/host/ExitGate.h"

#include <cstdlib>
#include <optional>
#include <pthread.h>
#include <thread>
#include <type_traits>
#include <utility>

namespace orvane {
namespace {

/// The gate whose pass the calling thread holds.
thread_local const ExitGate* passedHere = nullptr;

}  // namespace

void ExitGate::enter() {
  passedHere = this;
  ++inside_;
  if (!closed_) return;
  leave();
  for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
}

void ExitGate::leave() {
  --inside_;
  passedHere = nullptr;
}

void ExitGate::enterUntilThreadEnds() {
  // The system calls the destructors of a thread's values in rounds, as long as there are values. The
  // values of libraries go in the first round. The gate's pass is set again in that round, and so goes in the
  // second.
  static thread_local bool isFirstRound = true;
  static const std::optional<pthread_key_t> key = [] {
    pthread_key_t made{};
    const auto release = +[](void* gate) {
      if (!std::exchange(isFirstRound, false) || pthread_setspecific(*key, gate) != 0)
        static_cast<ExitGate*>(gate)->leave();
    };
    return pthread_key_create(&made, release) == 0 ? std::optional(made) : std::nullopt;
  }();
  enter();
  if (!key || pthread_setspecific(*key, this) != 0) leave();
}

void ExitGate::close(std::chrono::milliseconds limit) {
  using Clock = std::chrono::steady_clock;
  closed_ = true;
  const int heldHere = passedHere == this ? 1 : 0;
  const auto end = Clock::now() + limit;
  while (inside_ > heldHere && Clock::now() < end)
    std::this_thread::sleep_for(std::chrono::microseconds(100));
}

static_assert(std::is_trivially_destructible_v<ExitGate>);  // The gates outlive all statics.

ExitGate& curlGate() {
  static ExitGate gate;
  return gate;
}

ExitGate& handlerGate() {
  static ExitGate gate;
  return gate;
}

void closeGatesAtExit() {
  std::atexit([] {
    // A handler may wait for the very thread that ends the process, so its limit is short. curl returns soon.
    handlerGate().close(std::chrono::milliseconds(500));
    curlGate().close(std::chrono::seconds(3));
  });
}

}  // namespace orvane
