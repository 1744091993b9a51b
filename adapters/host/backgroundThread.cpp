#include "adapters/host/backgroundThread.h"

#include <csignal>
#include <thread>

namespace orvane {
namespace {

/// While it lives, the calling thread takes no signals; a thread that it starts never does.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
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
