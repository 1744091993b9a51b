#pragma once

#include <memory>

#include "orvane/client/OrvaneManager.h"

namespace orvane {

/// Makes the shared manager on its first use. An adapter whose managers are objects of another runtime, too, sets a
/// function of its own before the program begins.
extern std::unique_ptr<OrvaneManager> (*sharedManagerMaker)();

}  // namespace orvane
