#pragma once

#import <Foundation/Foundation.h>
#include <memory>

namespace orvane {

/// Retains `object` until the last copy of the result is gone, which plain C++ can hold. Returns null for
/// nil.
inline std::shared_ptr<const void> retained(id object) {
  return {[object retain], [](id kept) { [kept release]; }};
}

}  // namespace orvane
