#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace orvane {

// Numbers in characters, the same in every locale. std::to_chars would do it, but Apple's older systems lack it.

/// Has room for any number that is written here.
using NumberBuffer = std::array<char, 32>;

/// Writes an integer into `buffer` and returns its characters there.
std::string_view writeNumber(NumberBuffer& buffer, std::int64_t integer) noexcept;

/// Likewise, a finite real in the fewest characters that read back as the same number. One that is written without
/// exponent is exact before the decimal point.
std::string_view writeNumber(NumberBuffer& buffer, double real) noexcept;

/// Likewise, any real as printf's "%.16g" writes it in the C locale.
std::string_view writeRounded(NumberBuffer& buffer, double real) noexcept;

}  // namespace orvane
