#pragma once

#include <array>
#include <string>

#include "orvane/base/Enumeration.h"
#include "orvane/base/Error.h"
#include "orvane/base/Export.h"

namespace orvane {

/// What an application may want to tell apart. docs/errors.md has the errors of each kind.
enum class ErrorKind {
  refused,  ///< By the service.
  notSent,  ///< The request could not be made.
  noConnection,  ///< The service was not reached, or the connection was lost; the service may have got the request.
  timedOut,     ///< No reply came in time; the service may have got the request.
  notSecure,    ///< No secure connection came about.
  notReadable,  ///< A reply came that could not be understood.
  other,        ///< Anything else.
};

/// The raw values of ErrorKind.
inline constexpr std::array<std::string_view, 7> errorKindNames = {
    "refused", "not sent", "no connection", "timed out", "not secure", "not readable", "other"};

/// Enables rawValue(), hashValue() and fromRawValue() for this enumeration.
template <>
inline constexpr std::span<const std::string_view> rawValues<ErrorKind> = errorKindNames;

/// Returns the kind of an error that a call was given. An error without user information and without a platform's object
/// is a refusal, whatever its domain says: the domain is the service's text.
ORVANE_API ErrorKind kind(const Error& error);

/// Returns one sentence for a person: a refusal's own message, the platform's description of its error, or a sentence in
/// English where there is neither.
ORVANE_API std::string message(const Error& error);

}  // namespace orvane
