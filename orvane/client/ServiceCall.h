#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "orvane/network/NetWorkManager.h"

namespace orvane {

/// A call that the service offers.
struct ServiceCall {
  std::string_view name;  ///< Names the call in the line that a stop writes. JudgedReply has the reason.
  std::string_view path;  ///< Follows serviceBaseURL().
  /// The code of the error that the call reports if it cannot read its reply and does not stop the process.
  std::int64_t failureCode = -1;
};

inline constexpr ServiceCall pictureCodeCall = {"requestPictureCode", "/tenant/verify/captcha"};
inline constexpr ServiceCall codeCall = {"requestCode", "/tenant/getVerifyCode"};
inline constexpr ServiceCall loginCall = {"requestLogin", "/tenant/submitVerifyCode", 1};
inline constexpr ServiceCall deviceReportCall = {"requestLogin's report", "/tenant/submitMobileInformation"};

/// Makes a call through the shared NetworkManager: stores the header set there and sends `body` as JSON. The
/// header set is Content-Type application/json, XRAPI-VERSION 1.0, XRAPI-DEVICE-TYPE 1 and, if `clientId` is
/// present, XRAPI-CLIENT-ID. The session adds User-Agent and the fields that HTTP requires.
void send(const ServiceCall& call, const std::optional<std::string>& clientId, Map body,
          NetworkTool::Completion completion);

/// Makes a call with the header set that the shared NetworkManager holds: that of the latest call.
void sendWithStoredHeaders(const ServiceCall& call, Map body, NetworkTool::Completion completion);

}  // namespace orvane
