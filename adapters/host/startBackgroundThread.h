#pragma once

#include <csignal>
#include <functional>

namespace orvane {

/// Runs `body` on a new detached thread. The thread leaves all signals, except those of its own faults, to the
/// application's own threads. Throws std::system_error if the system has no thread to give.
void startBackgroundThread(std::function<void()> body);

/// While it lives, a background thread has the signal mask of the thread that started it, for the
/// application's own code: a child process inherits the mask of the thread that makes it. SIGPIPE alone stays
/// blocked, since one of curl's may be pending.
class StartersSignals {
 public:
  StartersSignals() noexcept;
  StartersSignals(const StartersSignals&) = delete;
  StartersSignals& operator=(const StartersSignals&) = delete;
  ~StartersSignals();

 private:
  sigset_t before_{};
};

}  // namespace orvane
