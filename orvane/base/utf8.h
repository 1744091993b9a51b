#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// Reads the code point that starts at `position` and moves `position` behind it. Nothing, and `position`
/// unmoved, where the bytes there are not well-formed UTF-8 (cut short, overlong, a surrogate, above
/// U+10FFFF) or the text has ended.
std::optional<char32_t> decodeUTF8(std::string_view text, std::size_t& position) noexcept;

/// Appends `codePoint`, which is at most U+10FFFF. A surrogate becomes three bytes that decodeUTF8 refuses.
void appendUTF8(std::string& text, char32_t codePoint);

}  // namespace orvane
