#pragma once

#include <string_view>

#include "orvane/base/Error.h"

namespace orvane {

// What stands under "error" in the user information of the transport's own errors.

inline constexpr std::string_view requestNotBuilt = "请求建立失败";
inline constexpr std::string_view replyNotDecoded = "反序列化失败";

/// Makes an error of the transport's own.
ErrorPtr transportError(std::string_view message);

}  // namespace orvane
