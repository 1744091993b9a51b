#pragma once

#include <optional>

#include "orvane/base/Error.h"
#include "orvane/base/Value.h"
#include "orvane/platform/URLSession.h"

namespace orvane {

/// What NetworkTool reports of a reply. One of the two is set, or neither where the session reported neither a body nor
/// an error.
struct DecodedReply {
  std::optional<Value> result = {};
  ErrorPtr error = {};  ///< The session's own, or the transport's where the body is not JSON.
};

/// Decodes what a session reported.
DecodedReply decodeReply(const DataTaskResult& reply);

}  // namespace orvane
