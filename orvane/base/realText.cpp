#include "orvane/base/realText.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace orvane {
namespace {

/// Large enough for 17 digits with a sign, an exponent, and a decimal point of many bytes.
using Buffer = std::array<char, 64>;

/// Returns the decimal point that printf and strtod use: one or more bytes, according to the locale. Takes it
/// from what printf writes, because localeconv() must not be called on several threads at once.
std::string localPoint() {
  Buffer half;
  const int size = std::snprintf(half.data(), half.size(), "%.1f", 0.5);
  return {half.data() + 1, half.data() + size - 1};
}

void replace(std::string& text, std::string_view from, std::string_view to) {
  if (const std::size_t at = text.find(from); at != text.npos) text.replace(at, from.size(), to);
}

}  // namespace

std::string writeReal(double real, int digits) {
  Buffer buffer;
  const int size = std::snprintf(buffer.data(), buffer.size(), "%.*g", digits, real);
  std::string text(buffer.data(), buffer.data() + size);
  replace(text, localPoint(), ".");
  return text;
}

std::string writeReal(double real) {
  std::string text;
  for (int digits = 15; digits <= 17; ++digits) {
    text = writeReal(real, digits);
    if (readReal(text) == real) break;
  }
  return text;
}

std::optional<double> readReal(std::string_view number) {
  std::string text(number);
  replace(text, ".", localPoint());
  const double real = std::strtod(text.c_str(), nullptr);
  if (std::isinf(real)) return std::nullopt;
  return real;
}

}  // namespace orvane
