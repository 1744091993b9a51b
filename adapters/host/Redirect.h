#pragma once

#include <string_view>
#include <variant>

#include "adapters/host/SessionError.h"
#include "orvane/platform/URLRequest.h"

namespace orvane {

/// A task that is redirected more often than this fails.
inline constexpr int maximumRedirects = 20;

/// Returns true if a session carries out requests to URLs of this scheme.
bool isSupportedScheme(std::string_view scheme) noexcept;

/// Returns true if a reply with that status redirects, provided that it has a location.
bool isRedirect(int statusCode) noexcept;

/// Returns the request to make next, or the reason not to follow the redirect: from https to http, or to a
/// scheme other than these. `location` is the absolute URL in the reply to `request`.
///
/// Drops credentials on the way to another origin. A POST after 301 or 302, and any method but HEAD after
/// 303, becomes a GET without a body.
std::variant<URLRequest, SessionFailure> redirect(const URLRequest& request, int statusCode,
                                                  std::string_view location);

}  // namespace orvane
