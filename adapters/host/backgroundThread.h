#pragma once

#include <functional>

namespace orvane {

/// Runs `body` on a new thread, which nobody joins and which leaves all signals, but those of its own faults, to the
/// application's own threads. Throws std::system_error where the system has no thread to give.
void startBackgroundThread(std::function<void()> body);

}  // namespace orvane
