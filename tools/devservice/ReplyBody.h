#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/devservice/Code.h"

namespace devservice {

/// The members of a reply's JSON object.
struct ReplyBody {
  Code code = Code::success;
  std::string msg;
  std::optional<std::vector<std::uint8_t>> data;  ///< Sent as an array of numbers, or as null.

  /// Returns a refusal for that reason. `detail`, if not empty, is added to the reason's text; it tells the
  /// developer which header field or member is wrong.
  static ReplyBody refusal(Code reason, std::string_view detail = {});
};

}  // namespace devservice
