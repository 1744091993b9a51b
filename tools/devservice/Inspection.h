#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/support/Members.h"

namespace devservice {

/// What a picture is drawn from.
struct Drawing {
  std::string text;
  std::uint32_t seed;
};

/// The time of the last call of a mobile number, and of the last success of each kind.
struct Dates {
  using Date = std::optional<std::chrono::system_clock::time_point>;
  Date call, picture, message, login, facts;
};

/// What the service knows of one mobile number.
struct Inspection {
  std::optional<std::string> picture;  ///< The picture's text, while it can be used.
  std::optional<std::string> message;  ///< The last text message.
  std::optional<std::uint64_t> messageId;
  std::optional<std::string> code;        ///< The code, while it can be used.
  std::optional<Drawing> drawing;         ///< The last picture, also after it was used or has expired.
  std::optional<support::Members> facts;  ///< The last submission, with its "mobile".
  std::optional<std::string> clientId;    ///< The client identifier of the last call, if it had one.
  bool signedIn = false;
  Dates dates;
};

}  // namespace devservice
