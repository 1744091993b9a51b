#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace orvane {

// These write the same text in every locale. std::to_chars would do, but Apple's older systems lack it.

/// Has room for any number.
using NumberBuffer = std::array<char, 32>;

/// Writes `integer` into `buffer` and returns a view of its characters there.
std::string_view writeNumber(NumberBuffer& buffer, std::int64_t integer) noexcept;

/// Writes `real`, which must be finite, in the fewest characters that read back as the same number, and
/// returns a view of them. Without an exponent, the digits before the decimal point are exact.
std::string_view writeNumber(NumberBuffer& buffer, double real) noexcept;

/// Writes any real as printf's "%.16g" does in the C locale, and returns a view of its characters.
std::string_view writeRounded(NumberBuffer& buffer, double real) noexcept;

}  // namespace orvane
