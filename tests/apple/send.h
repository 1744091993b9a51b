#pragma once

#import <Foundation/Foundation.h>
#import <objc/runtime.h>

/// A text that is not Unicode: two lone surrogates, around a pair and before a letter.
@interface BrokenText : NSString
@end

namespace orvane::test {

/// A class that only the object runtime names.
inline Class classNamed(const char* name) {
  return NSClassFromString([NSString stringWithUTF8String:name]);
}

/// Sends a message as any caller does that knows the selector alone. The cast by way of `void (*)()` is the
/// one that compilers leave without a warning.
template <class Result = void, class... Arguments>
Result send(id receiver, const char* selector, Arguments... arguments) {
  const SEL name = sel_registerName(selector);
  const auto method = reinterpret_cast<void (*)()>([receiver methodForSelector:name]);
  return reinterpret_cast<Result (*)(id, SEL, Arguments...)>(method)(receiver, name, arguments...);
}

}  // namespace orvane::test
