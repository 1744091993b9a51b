#include "adapters/host/startBackgroundThread.h"

#include <csignal>
#include <thread>
#include <utility>

namespace orvane {
namespace {

/// Set on a background thread. Other threads have nothing blocked, and do not ask.
thread_local sigset_t startersMask{};

/// While it lives, the calling thread takes no signals but those of its own faults; a thread that it starts
/// never does.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t blocked;
    sigfillset(&blocked);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) sigdelset(&blocked, fault);
    pthread_sigmask(SIG_SETMASK, &blocked, &before_);
  }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  const sigset_t& before() const noexcept { return before_; }

 private:
  sigset_t before_{};
};

}  // namespace

void startBackgroundThread(std::function<void()> body) {
  const SignalsBlocked blocked;
  std::thread([body = std::move(body), mask = blocked.before()]() mutable {
    startersMask = mask;
    sigaddset(&startersMask, SIGPIPE);
    body();
  }).detach();
}

StartersSignals::StartersSignals() noexcept {
  pthread_sigmask(SIG_SETMASK, &startersMask, &before_);
}

StartersSignals::~StartersSignals() {
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace orvane
