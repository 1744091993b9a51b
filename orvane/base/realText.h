#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

// These write and read the same text in every locale. std::to_chars and std::from_chars would do, but Apple's
// older systems lack them for reals.

/// Returns `real` as printf's "%.*g" does in the C locale, with up to `digits` significant digits.
std::string writeReal(double real, int digits);

/// Returns `real`, which must be finite, with up to 15, 16 or 17 significant digits: the first of these that
/// reads back as the same number.
std::string writeReal(double real);

/// Returns the double nearest to `number`, which must follow JSON's grammar, or nothing if that is infinite.
std::optional<double> readReal(std::string_view number);

}  // namespace orvane
