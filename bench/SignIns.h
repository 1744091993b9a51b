#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bench/Client.h"
#include "bench/Codec.h"

namespace orvane::bench {

/// Installs a platform whose session talks to that port on loopback. Call it before the library is used.
void installBenchPlatform(std::uint16_t port);

/// A whole sign-in through the public interface, with callbacks on the main queue: picture, code, login, and
/// the device's facts, until those have arrived. Returns the picture.
Bytes signIn();

/// The same by hand, one call after another.
Bytes signIn(Client& client, const Codec& codec);

/// One tiny call through the public interface, until its callback has run.
void requestCode();

/// The same by hand.
void requestCode(Client& client, const Codec& codec);

/// Starts `count` tiny calls through the public interface, and returns when all callbacks have run.
void requestCodes(std::size_t count);

/// Starts `count` tiny calls and waits for none.
void startCodes(std::size_t count);

/// The body of a tiny call.
Fields codeFields();

}  // namespace orvane::bench
