#include "tools/signin/printable.h"

#include "tools/devservice/appendHexEscape.h"

namespace signin {

std::string printable(std::string_view text) {
  std::string result;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    // UTF-8 has more control characters: U+0080 to U+009F, with the first byte C2. Without it, a second byte
    // is not a character.
    const bool startsControl =
        byte == 0xC2 && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
    if (byte < 0x20 || byte == 0x7F || startsControl) {
      devservice::appendHexEscape(result, text[at]);
    } else {
      result.push_back(text[at]);
    }
  }
  return result;
}

}  // namespace signin
