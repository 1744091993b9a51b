#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "orvane/base/Export.h"
#include "orvane/base/Value.h"

namespace orvane {

/// Why a call failed. Shared and never changed, so that the error which a session reported and the error
/// which a callback receives are one object; an absent error is a null `ErrorPtr`.
struct Error {
  std::string domain;                              ///< Whose code it is; the message of a refusal.
  std::int64_t code = 0;                           ///< What happened, in the domain's numbering.
  Map userInfo;                                    ///< Empty where there is none.
  std::shared_ptr<const void> platformError = {};  ///< The platform's own error object, where it made one.
};

/// An error, or null for none.
using ErrorPtr = std::shared_ptr<const Error>;

/// "DOMAIN (CODE)", without the user information.
ORVANE_API std::string description(const Error& error);

}  // namespace orvane
