#pragma once

#include <chrono>
#include <cstddef>

namespace devservice {

// Every bound of the service. They keep its memory small and its codes hard to guess, however long it runs
// and whatever it receives.

/// Time after which a picture or a code can no longer be used.
inline constexpr std::chrono::minutes secretLifetime{5};
/// Number of wrong tries after which a code can no longer be used.
inline constexpr int codeAttempts = 5;
/// Wrong codes that a mobile number may submit per window, over all of its codes. Then its logins are refused
/// until the window ends, one hour after the first wrong code. So the chance to guess a code is at most
/// maxWrongCodes in a million per window, even with a new code for each try.
inline constexpr int maxWrongCodes = 50;
inline constexpr std::chrono::hours wrongCodesWindow{1};

/// Mobile numbers remembered. A further one replaces the one whose last call is longest ago.
inline constexpr std::size_t maxNumbers = 10'000;
/// Bytes of a member or of the client identifier; a call with a longer one is refused. The service keeps at
/// most ten such strings per number.
inline constexpr std::size_t maxTextSize = 1024;

/// Text messages that the page shows. A further one replaces the oldest.
inline constexpr std::size_t maxMessages = 50;
/// Requests that the page shows. A further one replaces the oldest.
inline constexpr std::size_t maxLogEntries = 100;
/// Mobile numbers that the page shows: those with the latest calls.
inline constexpr std::size_t maxShownNumbers = 20;
/// Bytes of a text in the log, which cuts longer ones. Of a longer reply body it shows only the size, since
/// such a body is a picture.
inline constexpr std::size_t maxLogText = 200;
/// Members of a request in the log; further ones are left out.
inline constexpr std::size_t maxLoggedMembers = 10;
/// Header fields of a request in the log; further ones are left out.
inline constexpr std::size_t maxLoggedFields = 20;

/// Lines of output that wait to be read. Further ones are dropped.
inline constexpr std::size_t maxWaitingLines = 1000;

/// Delay of a late reply if none is chosen.
inline constexpr std::chrono::milliseconds usualDelay{1500};
/// Longest delay of a late reply; a longer one is refused.
inline constexpr std::chrono::milliseconds maxDelay{60'000};
/// Largest N of a fault that hits one call in N; a larger one is refused.
inline constexpr unsigned maxEvery = 1000;
/// Longest time that a script can wait for a text message; a longer one is refused.
inline constexpr std::chrono::milliseconds maxWait{60'000};

/// Bytes of a request's body, about 60 times a usual call. A larger one is refused with status 413.
inline constexpr std::size_t maxBodySize = std::size_t{64} << 10;
/// Bytes of a request's header with its request line. A larger one is refused with status 431.
inline constexpr std::size_t maxHeadSize = std::size_t{64} << 10;

/// The bounds of a server's connections.
struct ServerLimits {
  /// Connections of this machine served at the same time, without the parked ones. Further ones wait in the
  /// system's queue until one of these ends or is parked.
  std::size_t connections = 32;
  /// Connections of this machine that may be parked: kept without work while a reply is late, never comes, or
  /// is held back. A further request that wants this is refused with status 503.
  std::size_t parked = 500;
  /// Connections of all other machines together, parked ones included, and those of one of them. For a
  /// further one the connection is closed that has been idle longest. If none is idle, the new one is closed.
  std::size_t foreign = 64;
  std::size_t foreignPerPeer = 16;
  /// Time after which a connection without a request is closed.
  std::chrono::seconds idle{60};
  /// The same while another connection is waiting.
  std::chrono::seconds idleWhenCrowded{1};
  /// Time for a request to arrive, and for a reply to be sent. After that the connection is closed.
  std::chrono::milliseconds request{10'000};
  /// Longest time for which a connection stays open after a malformed request was refused, so that the caller
  /// can read the reason.
  std::chrono::seconds lingering{1};
  /// Time after which a connection is closed whose call is never answered because of a fault.
  std::chrono::minutes silence{10};
};

}  // namespace devservice
