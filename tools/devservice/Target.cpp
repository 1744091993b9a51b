#include "tools/devservice/Target.h"

#include <algorithm>
#include <charconv>

namespace devservice {

Target parseTarget(std::string_view text) {
  const std::size_t mark = std::min(text.find('?'), text.size());
  return {percentDecoded(text.substr(0, mark)), std::string(text.substr(std::min(mark + 1, text.size())))};
}

std::string percentDecoded(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string_view digits = text.substr(i + 1, 2);
    unsigned char byte = 0;
    const char* const end = digits.data() + 2;
    const bool stands =
        text[i] == '%' && digits.size() == 2 && std::from_chars(digits.data(), end, byte, 16).ptr == end;
    decoded.push_back(stands ? static_cast<char>(byte) : text[i]);
    if (stands) i += 2;
  }
  return decoded;
}

}  // namespace devservice
