#include "tools/signin/printable.h"

namespace signin {

std::string printable(std::string_view text) {
  constexpr std::string_view hex = "0123456789abcdef";
  std::string result;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    // In UTF-8 there are more of them, from U+0080 to U+009F; one without its first byte is none.
    const bool startsControl =
        byte == 0xC2 && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
    if (byte < 0x20 || byte == 0x7F || startsControl) {
      result.append({'\\', 'x', hex[byte >> 4], hex[byte & 15]});
    } else {
      result.push_back(text[at]);
    }
  }
  return result;
}

}  // namespace signin
