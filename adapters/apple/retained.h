#pragma once

#import <Foundation/Foundation.h>
#include <memory>

namespace orvane {

/// Keeps an Objective-C object alive, in a form that plain C++ can hold; null for nil.
inline std::shared_ptr<const void> retained(id object) {
  return {[object retain], [](id kept) { [kept release]; }};
}

}  // namespace orvane
