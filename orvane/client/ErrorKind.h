#pragma once

#include <array>
#include <string>

#include "orvane/base/Error.h"
#include "orvane/base/Export.h"
#include "orvane/base/rawValue.h"

namespace orvane {

/// The kinds of failure that an application may treat differently. docs/errors.md lists the errors of each.
enum class ErrorKind {
  refused,       ///< The service refused the call.
  notSent,       ///< The request could not be built, or a URL on its way cannot be used.
  noConnection,  ///< The connection failed or was lost. The service may have received the request.
  timedOut,      ///< No reply came in time. The service may have received the request.
  notSecure,     ///< No secure connection could be made.
  notReadable,   ///< A reply came that could not be read.
  other,         ///< Anything else.
};

/// The raw values of ErrorKind.
inline constexpr std::array<std::string_view, 7> errorKindNames = {
    "refused", "not sent", "no connection", "timed out", "not secure", "not readable", "other"};
static_assert(errorKindNames.size() == hashValue(ErrorKind::other) + 1);

/// Enables rawValue(), hashValue() and fromRawValue() for this enumeration.
template <>
inline constexpr std::span<const std::string_view> rawValues<ErrorKind> = errorKindNames;

/// Returns the kind of an error that `finished` received. An error with a cause has the kind of its cause.
/// Any other error is a refusal if it has neither user information nor a platform error. Its domain does not
/// count, because the domain of a refusal is the service's message.
ORVANE_API ErrorKind errorKind(const Error& error);

/// Returns one sentence for a person: the message of a refusal, the application's own words for a failure,
/// the platform's description of its error, or an English sentence if there is none of these.
ORVANE_API std::string errorMessage(const Error& error);

}  // namespace orvane
