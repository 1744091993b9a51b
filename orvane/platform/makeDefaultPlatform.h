#pragma once

#include "orvane/platform/Platform.h"

namespace orvane {

/// Makes the platform of the linked adapter. Each adapter defines this function, and a program links one
/// adapter.
Platform makeDefaultPlatform();

}  // namespace orvane
