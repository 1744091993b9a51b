#pragma once

#include <string>

namespace orvane {

/// Sends facts about the device to the service after the login of `mobile`. Uses the stored header set, normally that of
/// the login. Ignores the outcome.
void reportDevice(const std::string& mobile);

}  // namespace orvane
