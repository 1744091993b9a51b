#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "orvane/orvane.h"

namespace orvane::bench {

// What the clients send to the service, and what it replies.

inline constexpr const char* mobile = "13800138000";
inline constexpr const char* pictureText = "x7Kp";
inline constexpr const char* smsCode = "123456";

inline constexpr std::string_view picturePath = "/tenant/verify/captcha";
inline constexpr std::string_view codePath = "/tenant/getVerifyCode";
inline constexpr std::string_view loginPath = "/tenant/submitVerifyCode";
inline constexpr std::string_view reportPath = "/tenant/submitMobileInformation";

/// The reply to every call but the one for a picture.
inline constexpr std::string_view tinyReply = R"({"code":0,"msg":"ok"})";

/// The reply to the call for a picture.
std::string pictureReply(const Bytes& picture);

/// The picture of a sign-in, in bytes.
inline constexpr std::size_t usualPicture = 20'000;

/// Returns pictures that take turns, together 1.28 MB: bytes as evenly spread as those of a compressed one. A
/// processor's branch prediction adapts to a single picture, which then takes a third of the time of a new
/// one.
std::vector<Bytes> makePictures(std::size_t size);

}  // namespace orvane::bench
