#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

class TextRules;

/// `text` with every character that is no letter, mark or number replaced by "%" and two upper-case
/// hexadecimal digits for each of its UTF-8 bytes. Nothing where `text` is not UTF-8.
std::optional<std::string> percentEncode(std::string_view text, const TextRules& rules);

}  // namespace orvane
