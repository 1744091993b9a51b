#pragma once

#include "orvane/base/Export.h"
#include "orvane/platform/MainQueue.h"

namespace orvane {

/// Returns the main queue of the default platform, for the program to run. It lives until the process ends.
ORVANE_API MainQueue& hostMainQueue();

}  // namespace orvane
