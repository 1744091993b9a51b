#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace signin {

/// Returns the size in bytes of the control character that a text starts with: 1, or 2 for U+0080 to U+009F
/// in UTF-8. Returns 0 if it starts with another character, or is empty.
std::size_t controlSize(std::string_view text);

/// Returns the text with its control characters as \xNN, so that what a service sends cannot control the
/// terminal.
std::string printable(std::string_view text);

}  // namespace signin
