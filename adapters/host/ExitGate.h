#pragma once

#include <atomic>
#include <chrono>

namespace orvane {

/// Keeps background threads out of code that uses what is destroyed while the process ends. A thread holds a
/// Pass while it is inside. A thread that comes to a closed gate sleeps until the process has ended.
/// Gates do not nest.
class ExitGate {
 public:
  class Pass {
   public:
    explicit Pass(ExitGate& gate) : gate_(gate) { gate_.enter(); }
    Pass(const Pass&) = delete;
    ~Pass() { gate_.leave(); }

   private:
    ExitGate& gate_;
  };

  ExitGate() = default;
  ExitGate(const ExitGate&) = delete;
  ExitGate& operator=(const ExitGate&) = delete;

  /// Closes the gate. Returns when no other thread is inside, or after `limit`.
  void close(std::chrono::milliseconds limit);

  /// Enters for the rest of the calling thread's life. The thread leaves once the libraries that it used have
  /// cleaned up what they kept for it. Call it last, since the end of the process waits for the thread.
  void enterUntilThreadEnds();

 private:
  void enter();
  void leave();

  std::atomic<int> inside_ = 0;
  std::atomic<bool> closed_ = false;
};

/// The gate before curl, whose libraries clean up when the process ends.
ExitGate& curlGate();

/// The gate before handlers, which may use the application's statics.
ExitGate& handlerGate();

/// Has both gates close when the process ends: before the statics are destroyed that exist now, and before
/// the clean-up that libraries have registered by now.
void closeGatesAtExit();

}  // namespace orvane
