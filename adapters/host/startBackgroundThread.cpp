#include "adapters/host/startBackgroundThread.h"

#include <thread>
#include <utility>

namespace orvane {
namespace {

thread_local sigset_t maskOfTheStarter{};

}  // namespace

void startBackgroundThread(std::function<void()> body) {
  sigset_t blocked;
  sigfillset(&blocked);
  for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) sigdelset(&blocked, fault);
  const SignalMask inherited(blocked);  // By the new thread, from its first instruction on.
  std::thread([body = std::move(body), mask = inherited.before()] {
    maskOfTheStarter = mask;
    sigaddset(&maskOfTheStarter, SIGPIPE);
    body();
  }).detach();
}

const sigset_t& startersMask() noexcept {
  return maskOfTheStarter;
}

}  // namespace orvane
