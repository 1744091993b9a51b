#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

// These write and read the same string in every locale. std::to_chars and std::from_chars would do, but
// Apple's older systems lack them for doubles.

/// Returns `number` as printf's "%.*g" does in the C locale, with up to `digits` significant digits.
std::string writeDouble(double number, int digits);

/// Returns `number`, which must be finite, with up to 15, 16 or 17 significant digits: the first of these
/// that reads back as the same number.
std::string writeDouble(double number);

/// Returns the double nearest to `string`, a number in JSON's grammar, or nullopt if that is infinite.
std::optional<double> readDouble(std::string_view string);

}  // namespace orvane
