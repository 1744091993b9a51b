#pragma once

#include <cstdint>
#include <memory>

#include "orvane/platform/URLSession.h"

/// The adapter that a test program is linked with. It drains hostMainQueue().
namespace orvane::test {

/// Makes a session.
std::shared_ptr<URLSession> makeSession();

/// Makes a session that does the adapter's part and leaves the rest to `transport`.
std::shared_ptr<URLSession> makeSession(std::shared_ptr<URLSession> transport);

/// Installs the adapter, on a device with the carrier "Carrier". Requests for the service go to this
/// loopback port.
void installAdapter(std::uint16_t servicePort);

}  // namespace orvane::test
