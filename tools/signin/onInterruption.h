#pragma once

#include <functional>

namespace signin {

/// Lets `tidyUp` run when the program is interrupted, terminated or hung up, before the signal ends it; a second
/// signal ends it at once. A signal that the program was started to ignore stays ignored. To be called once,
/// before there are other threads; `tidyUp` runs on a thread of its own, perhaps while main returns.
void onInterruption(std::function<void()> tidyUp);

}  // namespace signin
