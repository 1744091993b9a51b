#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "orvane/base/Export.h"
#include "orvane/base/Value.h"

namespace orvane {

struct Error;

/// An error, or null for none.
using ErrorPtr = std::shared_ptr<const Error>;

/// The reason why a call failed. Errors are shared and immutable: a callback receives the very object that
/// the session reported. A null `ErrorPtr` means that there is no error.
struct Error {
  /// Says whose numbering `code` follows, such as "NSURLErrorDomain". For a refusal: the service's message.
  /// With a `cause`: the words of the application's Platform::failureWords.
  std::string domain = {};
  /// The kind of failure, in the domain's numbering.
  std::int64_t code = 0;
  /// Details by key. Empty for a refusal, and with a `cause`.
  Map userInfo = {};
  /// The platform's own error object, if it made one.
  std::shared_ptr<const void> platformError = {};
  /// What happened, if the call would have stopped the process without Platform::failureWords: the session's
  /// error, or NetworkTool's for a reply that could not be read. Else null.
  ErrorPtr cause = {};
};

/// Returns "DOMAIN (CODE)", without the user information.
ORVANE_API std::string errorDescription(const Error& error);

}  // namespace orvane
