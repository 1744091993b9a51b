#include "adapters/host/backgroundThread.h"

#include <csignal>
#include <thread>

namespace orvane {

void startBackgroundThread(std::function<void()> body) {
  // A new thread inherits the mask of the one that starts it.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  std::thread(std::move(body)).detach();
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace orvane
