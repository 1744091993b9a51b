#pragma once

#include <chrono>
#include <cstddef>

namespace devservice {

// What keeps the service small and its codes unknown, however long it runs and whatever is sent to it.

/// How long a picture and a code are good.
inline constexpr std::chrono::minutes secretLifetime{5};
/// Wrong tries that a code survives, less one: people mistype.
inline constexpr int codeAttempts = 5;
/// Wrong codes of a number, over all of its codes, in one window. The chance to hit one of them by trying is
/// maxWrongCodes in a million for each window, however often new codes are asked for.
inline constexpr int maxWrongCodes = 50;
inline constexpr std::chrono::hours wrongCodesWindow{1};

/// Numbers that are known at once; the one used longest ago is forgotten for a new one.
inline constexpr std::size_t maxNumbers = 10'000;
/// Bytes of a member or of the client identifier. What is kept of a number is less than ten of these.
inline constexpr std::size_t maxTextSize = 1024;
/// Text messages and requests that are kept to be looked at, and numbers that are shown.
inline constexpr std::size_t maxMessages = 50;
inline constexpr std::size_t maxLogEntries = 100;
inline constexpr std::size_t maxShownNumbers = 20;
/// Bytes of a text and of a reply's body in the log; longer bodies are pictures. Members of a request there.
inline constexpr std::size_t maxLogText = 200;
inline constexpr std::size_t maxLoggedMembers = 10;

/// How late a late reply is, and how late one can be made; how seldom a chosen fault can hit: one call in so many.
inline constexpr std::chrono::milliseconds usualDelay{1500};
inline constexpr std::chrono::milliseconds maxDelay{60'000};
inline constexpr unsigned maxEvery = 1000;
/// How long a script may wait for a text message.
inline constexpr std::chrono::milliseconds maxWait{60'000};

/// Bytes of a request's body: sixty times what the longest call needs.
inline constexpr std::size_t maxBodySize = std::size_t{64} << 10;
/// Bytes from the request line to the empty line.
inline constexpr std::size_t maxHeadSize = std::size_t{64} << 10;

/// What a server allows its callers.
struct ServerLimits {
  /// Connections served at once; more wait in the system's queue until one ends.
  std::size_t connections = 32;
  /// How long a connection is kept without a request.
  std::chrono::seconds idle{60};
  /// The same while others wait.
  std::chrono::seconds idleWhenCrowded{1};
  /// How long a request may take to arrive, and a reply to be taken.
  std::chrono::milliseconds request{10'000};
  /// How long a connection stays on which a call is never answered.
  std::chrono::minutes silence{10};
};

}  // namespace devservice
