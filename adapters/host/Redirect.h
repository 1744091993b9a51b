#pragma once

#include <string_view>
#include <variant>

#include "adapters/host/SessionError.h"
#include "orvane/platform/URLRequest.h"

namespace orvane {

inline constexpr int maximumRedirects = 20;

/// Returns true if a session carries out requests to URLs of this scheme.
bool isSupportedScheme(std::string_view scheme) noexcept;

/// Returns true if a reply with that status asks for another request, provided that it says where.
bool isRedirect(int statusCode) noexcept;

/// The request that a redirect asks for, `location` being the absolute URL it names; or why it is not
/// followed.
std::variant<URLRequest, SessionErrorCode> redirect(const URLRequest& request, int statusCode,
                                                    std::string_view location);

}  // namespace orvane
