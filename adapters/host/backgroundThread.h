#pragma once

#include <functional>

namespace orvane {

/// Runs `body` on a new thread, which nobody joins and which leaves all signals to the application's own
/// threads.
void startBackgroundThread(std::function<void()> body);

}  // namespace orvane
