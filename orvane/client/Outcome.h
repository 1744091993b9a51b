#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "orvane/base/Error.h"
#include "orvane/base/Value.h"

namespace orvane {

/// What comes of a service call.
struct Outcome {
  // What `finished` receives, as far as the call has it.
  std::optional<Bytes> picture = {};
  std::optional<std::string> message = {};
  ErrorPtr error = {};

  /// Says what the call misses in the reply, whereupon the process stops. Empty if the call misses nothing.
  std::string_view flaw = {};
};

// Each of these judges what a NetworkTool reported for the call of that name.

Outcome judgePictureCode(std::optional<Value> result, ErrorPtr error);
Outcome judgeCode(std::optional<Value> result, ErrorPtr error);
Outcome judgeLogin(std::optional<Value> result, ErrorPtr error);

}  // namespace orvane
