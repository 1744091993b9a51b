#pragma once

#include <string>

namespace orvane {

/// Reports the system's version, the carrier's name and the device's model to the service, after the login of
/// `mobile`. Reuses the stored header set, which is the login's unless another call was made meanwhile.
/// Ignores the outcome.
void reportDevice(const std::string& mobile);

}  // namespace orvane
