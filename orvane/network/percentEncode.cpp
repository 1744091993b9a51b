#include "orvane/network/percentEncode.h"

#include "orvane/base/appendPercentEncoded.h"
#include "orvane/base/ascii.h"
#include "orvane/base/decodeUTF8.h"
#include "orvane/platform/TextRules.h"

namespace orvane {
namespace {

bool isASCIIAlphanumeric(char c) {
  return isLetter(c) || isDigit(c);
}

}  // namespace

std::optional<std::string> percentEncode(std::string_view text, const TextRules& rules) {
  std::string encoded;
  for (std::size_t at = 0; at < text.size();) {
    if (isASCIIAlphanumeric(text[at])) {
      encoded.push_back(text[at++]);
      continue;
    }
    const std::size_t start = at;
    const std::optional<char32_t> codePoint = decodeUTF8(text, at);
    if (!codePoint) return std::nullopt;
    const std::string_view bytes = text.substr(start, at - start);
    if (*codePoint >= 0x80 && rules.isAlphanumeric(*codePoint)) {
      encoded.append(bytes);
    } else {
      for (const char c : bytes) appendPercentEncoded(encoded, c);
    }
  }
  return encoded;
}

}  // namespace orvane
