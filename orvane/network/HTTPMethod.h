#pragma once

#include <array>

#include "orvane/base/rawValue.h"

namespace orvane {

/// The kinds of request. JSON_POST sends the method POST with a JSON body.
enum class HTTPMethod { GET, POST, JSON_POST };

/// The raw values of HTTPMethod, in the order of its cases.
inline constexpr std::array<std::string_view, 3> httpMethodNames = {"GET", "POST", "JSON_POST"};
static_assert(httpMethodNames.size() == hashValue(HTTPMethod::JSON_POST) + 1);

/// Enables rawValue(), hashValue() and fromRawValue() for this enumeration.
template <>
inline constexpr std::span<const std::string_view> rawValues<HTTPMethod> = httpMethodNames;

}  // namespace orvane
