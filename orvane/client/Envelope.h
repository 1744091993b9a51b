#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "orvane/base/Error.h"
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

/// A decoded reply while it is judged. Reading is strict on purpose: a reply that lacks what is read, or
/// holds it in another form, stops the process.
class Reply {
 public:
  /// `result` must be a map.
  Reply(const ServiceCall& call, std::optional<Value> result);

  std::int64_t code() const;
  std::string msg() const;
  Array& data();

  [[noreturn]] void fail(std::string_view what) const;

 private:
  const Value* find(std::string_view key) const;

  ServiceCall call_;
  Value value_;
};

/// The error for a call that the service refused: its message is the domain.
ErrorPtr refusal(std::string message, std::int64_t code);

}  // namespace orvane
