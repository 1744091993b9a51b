#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tools/devservice/HTTPReply.h"
#include "tools/devservice/HTTPRequest.h"

namespace devservice {

/// Decides who may see the page and the codes: the developer on this machine, and callers on other machines
/// that know the token, if there is one. A script sends it as a bearer token. A browser sends it as a cookie,
/// which the service sets after a form was sent to `formPath`.
class Access {
 public:
  static constexpr std::string_view formPath = "/page/token";

  /// Without a token other machines have no access.
  explicit Access(std::string token) : token_(std::move(token)) {}

  /// Returns the refusal of a caller without access. It is the form if a browser asks for the page. Returns
  /// nullopt if the caller has access.
  std::optional<HTTPReply> refusal(const HTTPRequest& request) const;

  /// Returns the reply to the form: the cookie and the way to the page if the token is right, else the form.
  HTTPReply enter(const HTTPRequest& request) const;

 private:
  bool isToken(std::string_view text) const;
  bool hasToken(const HTTPRequest& request) const;

  const std::string token_;
};

}  // namespace devservice
