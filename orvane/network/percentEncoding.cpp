#include "orvane/network/percentEncoding.h"

#include "orvane/base/utf8.h"
#include "orvane/platform/TextRules.h"

namespace orvane {
namespace {

bool isKept(char32_t c, const TextRules& rules) {
  if (c >= 0x80) return rules.isAlphanumeric(c);
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

}  // namespace

std::optional<std::string> percentEncode(std::string_view text, const TextRules& rules) {
  constexpr std::string_view hex = "0123456789ABCDEF";
  std::string encoded;
  encoded.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = at;
    const std::optional<char32_t> codePoint = decodeUTF8(text, at);
    if (!codePoint) return std::nullopt;
    const std::string_view bytes = text.substr(start, at - start);
    if (isKept(*codePoint, rules)) {
      encoded.append(bytes);
      continue;
    }
    for (const char c : bytes) {
      const auto byte = static_cast<unsigned char>(c);
      encoded.append({'%', hex[byte >> 4], hex[byte & 15]});
    }
  }
  return encoded;
}

}  // namespace orvane
