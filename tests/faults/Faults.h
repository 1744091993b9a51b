#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/LoopbackServer.h"

namespace orvane::test {

/// Something that happens between a call and its reply.
struct Fault {
  /// The server's answer to the request of this number, counted from 0.
  using Script = std::function<LoopbackServer::Answer(int request)>;

  std::string name;  ///< As docs/errors.md has it.
  Script script;
  int calls = 1;  ///< How often the call is made, one after the other.
  std::chrono::milliseconds idleTimeout = std::chrono::seconds(60);
  std::chrono::milliseconds totalTimeout = std::chrono::seconds(60);
  std::string elsewhere = {};  ///< The host to which the requests go instead of the server's.
};

/// The body limit of all the calls, in bytes.
inline constexpr std::size_t bodyLimit = 4U << 20;

std::vector<Fault> makeFaults();

}  // namespace orvane::test
