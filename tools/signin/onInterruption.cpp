#include "tools/signin/onInterruption.h"

#include <csignal>
#include <pthread.h>
#include <thread>
#include <utility>

namespace signin {

void onInterruption(std::function<void()> tidyUp) {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before = {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaddset(&signals, signal);
  }
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);  // Later threads inherit the mask.
  std::thread([signals, tidyUp = std::move(tidyUp)] {
    int signal = 0;
    if (sigwait(&signals, &signal) != 0) return;
    for (const int each : {SIGINT, SIGTERM, SIGHUP}) {
      if (sigismember(&signals, each) == 1) std::signal(each, SIG_DFL);
    }
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    tidyUp();
    raise(signal);
  }).detach();
}

}  // namespace signin
