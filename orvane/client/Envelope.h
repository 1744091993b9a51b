#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "orvane/base/Value.h"
#include "orvane/network/NetWorkManager.h"

namespace orvane {

/// One of the service's calls: the name that diagnostics use, and the path under the service's base URL.
struct ServiceCall {
  std::string_view name;
  std::string_view path;
};

inline constexpr ServiceCall pictureCodeCall = {"requestPictureCode", "/tenant/verify/captcha"};
inline constexpr ServiceCall codeCall = {"requestCode", "/tenant/getVerifyCode"};
inline constexpr ServiceCall loginCall = {"requestLogin", "/tenant/submitVerifyCode"};
inline constexpr ServiceCall submissionCall = {"requestLogin's submission",
                                               "/tenant/submitMobileInformation"};

/// The header set of every service call.
Headers serviceHeaders(const std::optional<std::string>& clientId);

/// Sends a call's body by `transport`, with whatever header set that holds.
void send(NetworkManager& transport, const ServiceCall& call, Map body, NetworkTool::Completion completion);

}  // namespace orvane
