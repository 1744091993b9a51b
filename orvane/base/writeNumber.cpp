#include "orvane/base/writeNumber.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "orvane/base/Decimal.h"

namespace orvane {
namespace {

constexpr std::array<std::uint64_t, 20> powersOfTen = [] {
  std::array<std::uint64_t, 20> powers{};
  std::uint64_t power = 1;
  for (std::uint64_t& each : powers) {
    each = power;
    power *= 10;
  }
  return powers;
}();

/// Returns the number of digits of `number`, which has at most 19.
int countDigits(std::uint64_t number) noexcept {
  int count = 1;
  while (number >= powersOfTen[static_cast<std::size_t>(count)]) ++count;
  return count;
}

// Each of these writes at `to` and returns the end of what it wrote. `count` is how many digits there are.

/// Writes the last `count` digits of `number`.
char* writeDigits(char* to, std::uint64_t number, int count) noexcept {
  char* const end = to + count;
  for (char* at = end; at != to; number /= 10) *--at = static_cast<char>('0' + number % 10);
  return end;
}

/// Writes all digits, with a decimal point after the first `whole` of them unless none follow.
char* writeWithPoint(char* to, const Decimal& decimal, int count, int whole) noexcept {
  char* const end = writeDigits(to, decimal.digits, count);
  char* const point = to + whole;
  if (point == end) return end;
  std::copy_backward(point, end, end + 1);
  *point = '.';
  return end + 1;
}

char* writeScientific(char* to, const Decimal& decimal, int count) noexcept {
  const int leading = decimal.exponent + count - 1;
  to = writeWithPoint(to, decimal, count, 1);
  *to++ = 'e';
  *to++ = leading < 0 ? '-' : '+';
  return writeDigits(to, static_cast<std::uint64_t>(std::abs(leading)), std::abs(leading) < 100 ? 2 : 3);
}

/// Writes `beyond` in place of the zeros between the last digit and the decimal point.
char* writeFixed(char* to, const Decimal& decimal, int count, std::uint64_t beyond = 0) noexcept {
  if (decimal.exponent >= 0)
    return writeDigits(writeDigits(to, decimal.digits, count), beyond, decimal.exponent);
  const int whole = count + decimal.exponent;
  if (whole > 0) return writeWithPoint(to, decimal, count, whole);
  char* const end = writeDigits(writeDigits(to, 0, 2 - whole), decimal.digits, count);
  to[1] = '.';
  return end;
}

/// Returns the nearest decimal of at most 16 digits.
Decimal roundedDecimal(double real) noexcept {
  // The decimal point is the locale's, of any length, and is not read.
  constexpr int fractionDigits = 15;
  std::array<char, 64> text;
  const char* const end = text.data() + std::snprintf(text.data(), text.size(), "%.*e", fractionDigits, real);
  const char* const mark = std::find<const char*>(text.data(), end, 'e');
  Decimal decimal{static_cast<std::uint64_t>(text[0] - '0'), 0};
  for (const char* at = mark - fractionDigits; at != mark; ++at)
    decimal.digits = decimal.digits * 10 + static_cast<std::uint64_t>(*at - '0');
  std::from_chars(mark + (mark[1] == '+' ? 2 : 1), end, decimal.exponent);
  decimal.exponent -= fractionDigits;
  return withoutFinalZeros(decimal);
}

}  // namespace

std::string_view writeNumber(NumberBuffer& buffer, std::int64_t integer) noexcept {
  char* to = buffer.data();
  auto magnitude = static_cast<std::uint64_t>(integer);
  if (integer < 0) {
    *to++ = '-';
    magnitude = 0 - magnitude;
  }
  return {buffer.data(), writeDigits(to, magnitude, countDigits(magnitude))};
}

std::string_view writeNumber(NumberBuffer& buffer, double real) noexcept {
  char* to = buffer.data();
  if (std::signbit(real)) *to++ = '-';
  Decimal decimal = shortestDecimal(real);
  const int count = countDigits(decimal.digits);
  // Beyond these limits the notation with an exponent is shorter.
  const bool hasPoint = count > 1;
  const int least = -(count + (hasPoint ? 3 : 2));
  const int greatest = hasPoint ? 5 : 4;
  if (decimal.exponent < least || decimal.exponent > greatest)
    return {buffer.data(), writeScientific(to, decimal, count)};

  std::uint64_t beyond = 0;
  if (const double magnitude = std::abs(real); magnitude > 0x1p53) {
    // The digits leave out so little that the lowest 64 bits tell it.
    const std::uint64_t place = powersOfTen[static_cast<std::size_t>(decimal.exponent)];
    beyond = static_cast<std::uint64_t>(std::fmod(magnitude, 0x1p64)) - decimal.digits * place;
    if (static_cast<std::int64_t>(beyond) < 0) {
      --decimal.digits;
      beyond += place;
    }
  }
  return {buffer.data(), writeFixed(to, decimal, count, beyond)};
}

std::string_view writeRounded(NumberBuffer& buffer, double real) noexcept {
  char* to = buffer.data();
  if (std::signbit(real)) *to++ = '-';
  if (!std::isfinite(real)) {
    const std::string_view name = std::isnan(real) ? "nan" : "inf";
    return {buffer.data(), std::copy(name.begin(), name.end(), to)};
  }
  const Decimal decimal = roundedDecimal(std::abs(real));
  const int count = countDigits(decimal.digits);
  const int leading = decimal.exponent + count - 1;
  const bool isScientific = leading < -4 || leading > 15;
  return {buffer.data(), isScientific ? writeScientific(to, decimal, count) : writeFixed(to, decimal, count)};
}

}  // namespace orvane
