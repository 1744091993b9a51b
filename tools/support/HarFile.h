#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/support/Secrets.h"

namespace support {

/// A request and its outcome.
struct Exchange {
  std::chrono::system_clock::time_point start;
  std::chrono::milliseconds duration{0};
  std::string method;
  std::string url;
  std::vector<std::pair<std::string, std::string>> headers = {};  ///< Of the request.
  std::optional<std::string> requestBody = {};
  std::size_t requestSize = 0;
  int status = 0;                             ///< 0 if no reply came.
  std::optional<std::string> replyBody = {};  ///< Absent if it is not known, or none came.
  std::size_t replySize = 0;
  std::string comment = {};  ///< What went wrong, or empty.
};

/// Returns the exchange as an entry of a HAR file, in JSON on one line, without the secrets.
std::string harEntry(const Exchange& exchange, const Secrets& secrets);

/// Returns a HAR file (HTTP Archive 1.2), which the network panels of browsers open. `creator` is the program
/// that writes it.
std::string harFile(std::string_view creator, std::span<const std::string> entries);

}  // namespace support
