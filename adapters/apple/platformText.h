#pragma once

#import <Foundation/Foundation.h>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// Returns `text` in UTF-8, or an empty text for nil. UTF-8 cannot hold a lone surrogate: it becomes three
/// bytes that are not UTF-8, so that the library can refuse them.
std::string utf8(NSString* text);

/// Returns what utf8() returns, or nothing for nil.
std::optional<std::string> optionalUTF8(NSString* text);

/// Returns the UTF-8 in `text` as an object. Puts U+FFFD in place of each lone surrogate, as utf8() writes
/// them, and of each other byte that is not UTF-8.
NSString* platformText(std::string_view text);

/// Returns what platformText() returns, or nil for nothing.
NSString* platformTextOrNil(const std::optional<std::string>& text);

}  // namespace orvane
