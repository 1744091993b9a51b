#pragma once

#include <atomic>
#include <chrono>

namespace orvane {

/// Keeps background threads out of what goes away while the process ends. They pass it on their way in; once
/// it is closed they sleep before it until the process is gone.
class ExitGate {
 public:
  class Pass {
   public:
    explicit Pass(ExitGate& gate) : gate_(gate) { gate_.enter(); }
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;
    ~Pass() { gate_.leave(); }

   private:
    ExitGate& gate_;
  };

  ExitGate() = default;
  ExitGate(const ExitGate&) = delete;
  ExitGate& operator=(const ExitGate&) = delete;

  /// Returns when no other thread is inside, or after `limit`.
  void close(std::chrono::milliseconds limit);

  /// Forgets those inside who are not in a child made by fork().
  void keepOnlyThisThread();

 private:
  void enter();
  void leave();
  int heldHere() const;

  std::atomic<int> inside_ = 0;
  std::atomic<bool> closed_ = false;
};

/// A thread passes it before it enters curl, which uses libraries that clean up when the process ends.
ExitGate& curlGate();

/// A thread passes it before it calls a handler, which may use the application's statics.
ExitGate& handlerGate();

/// Closes both when the process ends: before the statics go that are there already, and before the clean-up
/// of whatever has registered its own by now.
void closeGatesAtExit();

}  // namespace orvane
