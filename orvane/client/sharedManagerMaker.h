#pragma once

#include <memory>

#include "orvane/client/OrvaneManager.h"

namespace orvane {

/// The function that makes the shared manager on its first use. An adapter whose managers are also objects of
/// another runtime replaces it before main() begins.
extern std::unique_ptr<OrvaneManager> (*sharedManagerMaker)();

}  // namespace orvane
