#import "adapters/apple/platformText.h"

#include <vector>

#include "orvane/base/decodeUTF8.h"

namespace orvane {
namespace {

bool isHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool isLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

/// Returns true for the three bytes that utf8() makes of a lone surrogate.
bool beginsWithSurrogate(std::string_view bytes) {
  const auto isContinued = [](char byte) { return (byte & '\xC0') == '\x80'; };
  return bytes.size() >= 3 && bytes[0] == '\xED' && isContinued(bytes[1]) && isContinued(bytes[2]);
}

}  // namespace

std::string utf8(NSString* text) {
  std::vector<unichar> units([text length]);
  [text getCharacters:units.data() range:NSMakeRange(0, units.size())];
  std::string bytes;
  bytes.reserve(units.size());
  for (std::size_t at = 0; at < units.size(); ++at) {
    char32_t codePoint = units[at];
    if (isHighSurrogate(codePoint) && at + 1 < units.size() && isLowSurrogate(units[at + 1]))
      codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (units[++at] - 0xDC00U);
    appendUTF8(bytes, codePoint);
  }
  return bytes;
}

std::optional<std::string> optionalUTF8(NSString* text) {
  if (!text) return std::nullopt;
  return utf8(text);
}

NSString* platformText(std::string_view text) {
  // NSString raises an exception for a null pointer, even with a length of 0.
  if (text.empty()) return @"";
  std::vector<unichar> units;
  units.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const std::optional<char32_t> decoded = decodeUTF8(text, at);
    if (!decoded) at += beginsWithSurrogate(text.substr(at)) ? 3 : 1;
    const char32_t codePoint = decoded.value_or(0xFFFD);
    if (codePoint < 0x10000) {
      units.push_back(static_cast<unichar>(codePoint));
    } else {
      units.push_back(static_cast<unichar>(0xD800 + ((codePoint - 0x10000) >> 10)));
      units.push_back(static_cast<unichar>(0xDC00 + (codePoint & 0x3FF)));
    }
  }
  return [NSString stringWithCharacters:units.data() length:units.size()];
}

NSString* platformTextOrNil(const std::optional<std::string>& text) {
  return text ? platformText(std::string_view(*text)) : nil;
}

}  // namespace orvane
