#pragma once

#include <memory>

#include "orvane/client/OrvaneManager.h"

namespace orvane {

/// Makes the shared manager on its first use. The binding for Objective-C replaces this function before
/// main() begins, so that the shared manager is an Objective-C object, too.
extern std::unique_ptr<OrvaneManager> (*sharedManagerMaker)();

}  // namespace orvane
