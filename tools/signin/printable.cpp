#include "tools/signin/printable.h"

#include "tools/support/appendHexEscape.h"

namespace signin {

std::size_t controlSize(std::string_view text) {
  const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  if (text.empty()) return 0;
  if (byte(0) < 0x20 || byte(0) == 0x7F) return 1;
  return byte(0) == 0xC2 && text.size() > 1 && byte(1) >= 0x80 && byte(1) < 0xA0 ? 2 : 0;
}

std::string printable(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t size = controlSize(text);
    for (const char c : text.substr(0, size)) support::appendHexEscape(result, c);
    if (size == 0) result.push_back(text.front());
    text.remove_prefix(size == 0 ? 1 : size);
  }
  return result;
}

}  // namespace signin
