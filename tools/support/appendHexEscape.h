#pragma once

#include <string>
#include <string_view>

namespace support {

/// Appends the byte as \xNN.
inline void appendHexEscape(std::string& text, char byte) {
  constexpr std::string_view digits = "0123456789abcdef";
  const auto value = static_cast<unsigned char>(byte);
  text.append({'\\', 'x', digits[value >> 4], digits[value & 15]});
}

}  // namespace support
