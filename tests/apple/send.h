#pragma once

#import <Foundation/Foundation.h>
#import <objc/runtime.h>

/// A text that is not Unicode: a lone surrogate before a pair, and another one after it, before a letter.
@interface BrokenText : NSString
@end

namespace orvane::test {

/// Returns the class that the object runtime knows by this name.
inline Class classNamed(const char* name) {
  return NSClassFromString([NSString stringWithUTF8String:name]);
}

/// Sends a message like a caller that knows only the selector. Casts by way of `void (*)()`, because
/// compilers warn about a direct cast.
template <class Result = void, class... Arguments>
Result send(id receiver, const char* selector, Arguments... arguments) {
  const SEL name = sel_registerName(selector);
  const auto method = reinterpret_cast<void (*)()>([receiver methodForSelector:name]);
  return reinterpret_cast<Result (*)(id, SEL, Arguments...)>(method)(receiver, name, arguments...);
}

}  // namespace orvane::test
