#pragma once

#include <csignal>
#include <functional>

namespace orvane {

/// Runs `body` on a new detached thread. The thread leaves all signals, except those of its own faults, to
/// the application's own threads. Throws std::system_error if the system has no thread to give.
void startBackgroundThread(std::function<void()> body);

/// Returns the signal mask of the thread that started this background thread, with SIGPIPE in addition, since
/// one of curl's may be pending. The application's code runs with it: a child process inherits the mask of
/// the thread that makes it.
const sigset_t& startersMask() noexcept;

/// Gives the calling thread a signal mask for the lifetime of this object.
class SignalMask {
 public:
  explicit SignalMask(const sigset_t& mask) noexcept { pthread_sigmask(SIG_SETMASK, &mask, &before_); }
  SignalMask(const SignalMask&) = delete;
  SignalMask& operator=(const SignalMask&) = delete;
  ~SignalMask() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

  const sigset_t& before() const noexcept { return before_; }

 private:
  sigset_t before_{};
};

}  // namespace orvane
