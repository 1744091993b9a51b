#pragma once

#include <string>
#include <string_view>

namespace orvane {

/// Appends "%" and the byte `c` as two upper-case hexadecimal digits.
inline void appendPercentEncoded(std::string& text, char c) {
  constexpr std::string_view hex = "0123456789ABCDEF";
  const auto byte = static_cast<unsigned char>(c);
  text.append({'%', hex[byte >> 4], hex[byte & 15]});
}

}  // namespace orvane
