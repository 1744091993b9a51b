#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace devservice {

/// What happens to the connection before the reply is sent, or in its place.
enum class TransportFault {
  none,
  delay,    ///< The whole reply is sent, but late.
  drop,     ///< The connection is closed before any byte of the reply.
  cut,      ///< The header and half of the body are sent, then the connection is closed.
  reset,    ///< The connection is reset before any byte of the reply.
  silence,  ///< Nothing is sent. The connection stays open until the caller ends it.
};

/// A reply as the service makes it, independent of the connection that will carry it.
struct HTTPReply {
  int status = 200;
  std::string contentType = "application/json";
  std::string body;
  TransportFault fault = TransportFault::none;
  std::vector<std::pair<std::string, std::string>> headers = {};  ///< In addition to those of every reply.
  std::chrono::milliseconds delay{0};                             ///< Used with TransportFault::delay.
  /// How long this reply may be held back. Another request may change it, so the service answers the same
  /// request again after each other one. 0 sends the reply immediately.
  std::chrono::milliseconds wait{0};
};

}  // namespace devservice
