#pragma once

#import <Foundation/Foundation.h>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// The text as UTF-8; empty for nil. A lone surrogate, which UTF-8 cannot hold, becomes three bytes that are not
/// UTF-8, so that the library may refuse them.
std::string utf8(NSString* text);

/// Likewise, and nothing for nil.
std::optional<std::string> optionalUTF8(NSString* text);

/// The text as an object, with U+FFFD for each lone surrogate and for each other byte that is not UTF-8.
NSString* platformText(std::string_view text);

/// Likewise, and nil for nothing.
NSString* platformTextOrNil(const std::optional<std::string>& text);

}  // namespace orvane
