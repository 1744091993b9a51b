#import "adapters/apple/platformString.h"

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

std::string utf8(NSString* string) {
  std::vector<unichar> units([string length]);
  [string getCharacters:units.data() range:NSMakeRange(0, units.size())];
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

std::optional<std::string> optionalUTF8(NSString* string) {
  if (!string) return std::nullopt;
  return utf8(string);
}

NSString* platformString(std::string_view string) {
  // NSString raises an exception for a null pointer, even with a length of 0.
  if (string.empty()) return @"";
  std::vector<unichar> units;
  units.reserve(string.size());
  for (std::size_t at = 0; at < string.size();) {
    const std::optional<char32_t> decoded = decodeUTF8(string, at);
    if (!decoded) at += beginsWithSurrogate(string.substr(at)) ? 3 : 1;
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

NSString* platformStringOrNil(const std::optional<std::string>& string) {
  return string ? platformString(std::string_view(*string)) : nil;
}

}  // namespace orvane
