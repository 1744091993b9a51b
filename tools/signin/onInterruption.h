#pragma once

#include <functional>

namespace signin {

/// Calls `tidyUp` once when SIGINT, SIGTERM or SIGHUP arrives; the signal then ends the process. A second
/// signal ends it at once. Signals that the process was started to ignore stay ignored. To be called once,
/// before other threads start. `tidyUp` runs on a thread of its own, possibly while main() returns.
void onInterruption(std::function<void()> tidyUp);

}  // namespace signin
