#pragma once

#include <optional>
#include <string_view>

namespace orvane {

/// Returns the double nearest to `number`, which must follow JSON's grammar, or nothing if it is too large
/// for a double. Reads the same in every locale.
std::optional<double> readReal(std::string_view number);

}  // namespace orvane
