#pragma once

#include <optional>

#include "orvane/base/Error.h"
#include "orvane/base/Value.h"
#include "orvane/platform/URLSession.h"

namespace orvane {

/// What NetworkTool reports about a reply. One of the two is set, or neither if the session reported neither
/// a body nor an error.
struct DecodedReply {
  std::optional<Value> result = {};
  ErrorPtr error = {};  ///< The session's own error, or NetworkTool's if the body is not JSON.
};

/// Decodes the outcome that a session reported.
DecodedReply decodeReply(const DataTaskResult& reply);

}  // namespace orvane
