#pragma once

#import <Foundation/Foundation.h>
#include <memory>

namespace orvane {

// For sources that are compiled with and without automatic reference counting.

/// Retains `object` until the last copy of the result is gone, which plain C++ can hold. Returns null for
/// nil.
inline std::shared_ptr<const void> retained(id object) {
#if __has_feature(objc_arc)
  return {(__bridge_retained const void*)object, [](const void* kept) {
            const id released = (__bridge_transfer id)kept;
            (void)released;
          }};
#else
  return {[object retain], [](id kept) { [kept release]; }};
#endif
}

/// Leaves `object`, which the caller has made with `alloc` or `copy`, to the autorelease pool.
template <class Object>
Object autoreleased(Object object) {
#if __has_feature(objc_arc)
  return object;
#else
  return [object autorelease];
#endif
}

/// Returns the object in `kept`, or nil for null. It lives at least until the autorelease pool is drained.
template <class Type>
Type* objectIn(const std::shared_ptr<const void>& kept) {
#if __has_feature(objc_arc)
  return (__bridge Type*)kept.get();
#else
  return [[(Type*)kept.get() retain] autorelease];
#endif
}

}  // namespace orvane
