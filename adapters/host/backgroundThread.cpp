#include "adapters/host/backgroundThread.h"

#include <csignal>
#include <thread>

namespace orvane {
namespace {

/// While it lives, the calling thread takes no signals but those of its own faults; a thread that it starts never does.
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

 private:
  sigset_t before_{};
};

}  // namespace

void startBackgroundThread(std::function<void()> body) {
  const SignalsBlocked blocked;
  std::thread(std::move(body)).detach();
}

}  // namespace orvane
