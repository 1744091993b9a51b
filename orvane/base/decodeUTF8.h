#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// Reads the code point that starts at `position` and moves `position` past it. Returns nullopt, and leaves
/// `position` where it is, if the text has ended or the bytes there are not well-formed UTF-8: cut short,
/// overlong, a surrogate, or above U+10FFFF.
std::optional<char32_t> decodeUTF8(std::string_view text, std::size_t& position) noexcept;

/// Appends `codePoint`, which must be at most U+10FFFF. A surrogate becomes three bytes that decodeUTF8
/// refuses.
void appendUTF8(std::string& text, char32_t codePoint);

}  // namespace orvane
