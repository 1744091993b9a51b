#pragma once

#include <memory>

#include "orvane/platform/URLSession.h"

/// The adapter that a test program is linked with. It drains hostMainQueue().
namespace orvane::test {

/// Makes a session that does the adapter's part and leaves the rest to `transport`, a host session or one
/// around it.
std::shared_ptr<URLSession> makeSession(std::shared_ptr<URLSession> transport);

}  // namespace orvane::test
