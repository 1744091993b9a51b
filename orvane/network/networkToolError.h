#pragma once

#include <string_view>

#include "orvane/base/Error.h"

namespace orvane {

// The values of "error" in the user information of NetworkTool's own errors.

inline constexpr std::string_view requestNotBuilt = "请求建立失败";
inline constexpr std::string_view replyNotDecoded = "反序列化失败";

/// Makes an error of the domain NetworkTool::errorDomain with the code -1.
ErrorPtr networkToolError(std::string_view message);

}  // namespace orvane
