#pragma once

#include "orvane/platform/Platform.h"

namespace orvane {

/// Makes `session` and `failureWords` part of what makeDefaultPlatform() returns, in place of an earlier
/// choice. Returns false, and changes nothing, if the library is in use.
bool setDefaults(std::shared_ptr<URLSession> session,
                 std::function<std::string(const Error& cause)> failureWords);

}  // namespace orvane
