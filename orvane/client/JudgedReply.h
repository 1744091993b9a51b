#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "orvane/base/Error.h"
#include "orvane/base/Value.h"

namespace orvane {

/// The outcome that a call derives from its reply. A reply whose "code" is not 0 becomes a refusal: an error
/// without user information, whose domain is the reply's "msg" and whose code is the reply's, or 1 for a
/// login.
struct JudgedReply {
  // What `finished` receives. Each call uses two of these, or one.
  std::optional<Bytes> picture = {};
  std::optional<std::string> message = {};
  ErrorPtr error = {};

  /// Says what the call cannot read. Empty if it can read everything. With a flaw, `error` is NetworkTool's
  /// or the session's, if it reported one, and the other members have no meaning.
  std::string_view flaw = {};
};

// Each of these judges what NetworkTool reported for the call of that name.

JudgedReply judgePictureCode(std::optional<Value> result, ErrorPtr error);
JudgedReply judgeCode(std::optional<Value> result, ErrorPtr error);
JudgedReply judgeLogin(std::optional<Value> result, ErrorPtr error);

}  // namespace orvane
