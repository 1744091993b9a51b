#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

class TextRules;

/// Returns `text` with each character that is not a letter, mark or number percent-encoded: each of its UTF-8
/// bytes becomes "%" and two upper-case hexadecimal digits. Returns nullopt if `text` is not UTF-8.
std::optional<std::string> percentEncode(std::string_view text, const TextRules& rules);

}  // namespace orvane
