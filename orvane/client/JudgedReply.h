#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "orvane/base/Error.h"
#include "orvane/base/Value.h"

namespace orvane {

/// What a call makes of its reply.
struct JudgedReply {
  // What `finished` receives. Each call uses two of these, or one.
  std::optional<Bytes> picture = {};
  std::optional<std::string> message = {};
  ErrorPtr error = {};

  /// Says what the call cannot read, in which case it stops the process. Empty if it reads everything that it needs.
  std::string_view flaw = {};
};

// Each of these judges what NetworkTool reported for the call of that name.

JudgedReply judgePictureCode(std::optional<Value> result, ErrorPtr error);
JudgedReply judgeCode(std::optional<Value> result, ErrorPtr error);
JudgedReply judgeLogin(std::optional<Value> result, ErrorPtr error);

}  // namespace orvane
