#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "orvane/base/Value.h"

namespace orvane::bench {

/// The members of a call's body, all texts.
using Fields = std::vector<std::pair<std::string, std::string>>;

/// One JSON library with the service's bodies and replies, used as its documentation advises. Not
/// thread-safe, since it keeps its buffers between uses.
struct Codec {
  std::string name;
  std::function<std::string(const Fields& fields)> body;  ///< Empty where the library only reads.
  /// The picture in an accepted reply, else nothing.
  std::function<std::optional<Bytes>(const std::string& reply)> picture;
  /// The message of an accepted reply, else nothing.
  std::function<std::optional<std::string>(const std::string& reply)> message;
};

/// Reading and writing as the library does it, without its transport.
Codec ownCodec();

Codec nlohmannCodec();
Codec boostCodec();
Codec rapidCodec();
Codec simdCodec();
/// simdjson without a tree: each member is parsed when it is asked for.
Codec simdOnDemandCodec();

}  // namespace orvane::bench
