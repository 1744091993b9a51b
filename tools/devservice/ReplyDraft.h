#pragma once

#include <optional>
#include <string>

#include "tools/devservice/HTTPReply.h"
#include "tools/support/Json.h"

namespace devservice {

/// A reply that a fault may still change.
struct ReplyDraft {
  support::Json object;
  std::optional<std::string> body = std::nullopt;  ///< Sent in place of the object, if set.
  int status = 200;
  TransportFault transport = TransportFault::none;
};

}  // namespace devservice
