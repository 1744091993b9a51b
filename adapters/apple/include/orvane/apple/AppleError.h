#pragma once

#import <Foundation/Foundation.h>

#include "orvane/base/Error.h"

namespace orvane {

/// The error with the domain, the code and the texts among the user information of `error`, which it keeps as its
/// platform's object; null for nil.
ORVANE_API ErrorPtr makeError(NSError* _Nullable error);

/// The very object that `error` was made from, where there is one; else an object of the same domain, code and texts
/// among the user information. Nil for null.
ORVANE_API NSError* _Nullable platformError(const ErrorPtr& error);

}  // namespace orvane
