#include "orvane/network/percentEncode.h"

#include "orvane/base/decodeUTF8.h"
#include "orvane/platform/TextRules.h"

namespace orvane {
namespace {

bool isASCIIAlphanumeric(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

void escape(std::string& encoded, std::string_view bytes) {
  constexpr std::string_view hex = "0123456789ABCDEF";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    encoded.append({'%', hex[byte >> 4], hex[byte & 15]});
  }
}

}  // namespace

std::optional<std::string> percentEncode(std::string_view text, const TextRules& rules) {
  std::string encoded;
  encoded.reserve(3 * text.size());
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
      escape(encoded, bytes);
    }
  }
  return encoded;
}

}  // namespace orvane
