#pragma once

#import <Foundation/Foundation.h>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// Returns `string` in UTF-8, or an empty string for nil. UTF-8 cannot hold a lone surrogate: it becomes
/// three bytes that are not UTF-8, so that the library can refuse them.
std::string utf8(NSString* string);

/// Returns what utf8() returns, or nullopt for nil.
std::optional<std::string> optionalUTF8(NSString* string);

/// Returns the UTF-8 in `string` as an object. Puts U+FFFD in place of each lone surrogate, as utf8() writes
/// them, and of each other byte that is not UTF-8.
NSString* platformString(std::string_view string);

/// Returns what platformString() returns, or nil for nullopt.
NSString* platformStringOrNil(const std::optional<std::string>& string);

}  // namespace orvane
