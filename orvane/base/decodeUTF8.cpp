#include "orvane/base/decodeUTF8.h"

#include <array>

namespace orvane {

std::optional<char32_t> decodeUTF8(std::string_view text, std::size_t& position) noexcept {
  const auto byte = [&](std::size_t offset) -> unsigned {
    const std::size_t at = position + offset;
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
  };
  if (position >= text.size()) return std::nullopt;

  const unsigned lead = byte(0);
  if (lead < 0x80) {
    ++position;
    return lead;
  }
  const std::size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF8 ? 4 : 0;
  if (length == 0) return std::nullopt;

  char32_t codePoint = lead & (0x7FU >> length);
  for (std::size_t offset = 1; offset < length; ++offset) {
    const unsigned next = byte(offset);
    if ((next & 0xC0) != 0x80) return std::nullopt;
    codePoint = codePoint << 6 | (next & 0x3F);
  }
  const bool overlong = (length == 3 && codePoint < 0x800) || (length == 4 && codePoint < 0x10000);
  const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
  if (overlong || surrogate || codePoint > 0x10FFFF) return std::nullopt;
  position += length;
  return codePoint;
}

void appendUTF8(std::string& text, char32_t codePoint) {
  const auto append = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  constexpr std::array<char32_t, 4> leads = {0, 0xC0, 0xE0, 0xF0};  // By how many bytes follow.
  std::size_t following = codePoint < 0x80 ? 0 : codePoint < 0x800 ? 1 : codePoint < 0x10000 ? 2 : 3;
  append(leads[following] | codePoint >> 6 * following);
  while (following-- > 0) append(0x80 | (codePoint >> 6 * following & 0x3F));
}

}  // namespace orvane
