#pragma once

#import <Foundation/Foundation.h>

#include "orvane/base/Error.h"

namespace orvane {

/// Makes an error with the domain and the code of `error`, and those entries of its user information whose
/// key and value are strings. Keeps `error` as the platform's object. An error that platformError() made with
/// a cause gets its cause back. Returns null for nil.
ORVANE_API ErrorPtr makeError(NSError* _Nullable error);

/// Returns the very object that `error` was made from. If there is none, makes an object with the domain, the
/// code, and those entries of the user information whose value is a string. For an error with a cause, the
/// user information also has the cause, and the domain as description. Returns nil for null.
ORVANE_API NSError* _Nullable platformError(const ErrorPtr& error);

}  // namespace orvane
