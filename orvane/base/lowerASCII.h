#pragma once

namespace orvane {

/// Returns an ASCII letter in lower case and any other character unchanged, whatever the locale.
constexpr char lowerASCII(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace orvane
