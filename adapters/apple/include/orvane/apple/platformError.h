#pragma once

#import <Foundation/Foundation.h>

#include "orvane/base/Error.h"

namespace orvane {

/// Makes an error with the domain and the code of `error`, and those entries of its user information whose
/// key and value are strings. Keeps `error` as the platform's object, and its cause, if it is the error of a
/// failure in the application's words. Returns null for nil.
ORVANE_API ErrorPtr makeError(NSError* _Nullable error);

/// Returns the very object that `error` was made from. If it was not made from one, makes an object with its
/// domain, its code, and those entries of its user information whose value is a string. One with a cause has
/// it in the user information, and its domain as the description. Returns nil for null.
ORVANE_API NSError* _Nullable platformError(const ErrorPtr& error);

}  // namespace orvane
