#include "orvane/base/doubleString.h"

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

void replace(std::string& string, std::string_view from, std::string_view to) {
  if (const std::size_t at = string.find(from); at != string.npos) string.replace(at, from.size(), to);
}

}  // namespace

std::string writeDouble(double number, int digits) {
  Buffer buffer;
  const int size = std::snprintf(buffer.data(), buffer.size(), "%.*g", digits, number);
  std::string string(buffer.data(), buffer.data() + size);
  replace(string, localPoint(), ".");
  return string;
}

std::string writeDouble(double number) {
  std::string string;
  for (int digits = 15; digits <= 17; ++digits) {
    string = writeDouble(number, digits);
    if (readDouble(string) == number) break;
  }
  return string;
}

std::optional<double> readDouble(std::string_view string) {
  std::string local(string);
  replace(local, ".", localPoint());
  const double number = std::strtod(local.c_str(), nullptr);
  if (std::isinf(number)) return std::nullopt;
  return number;
}

}  // namespace orvane
