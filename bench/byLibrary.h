#pragma once

#include <cstddef>
#include <cstdint>

#include "orvane/orvane.h"

namespace orvane::bench {

// What a user writes with the library: its public interface, with callbacks on the main queue. All throw if a
// call fails or is refused.

/// Installs a platform whose session talks to that port on loopback. Call it before the library is used.
void installBenchPlatform(std::uint16_t port);

/// Makes the four calls of a sign-in. Returns the picture when the report about the device has arrived.
Bytes signIn();

/// Makes `count` calls for a code at once, and returns when all callbacks have run.
void requestCodes(std::size_t count);

}  // namespace orvane::bench
