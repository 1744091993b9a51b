#pragma once

#include <optional>
#include <string_view>

namespace orvane {

/// The double nearest to a number in JSON's grammar; nothing where it is too large for one. The same in every
/// locale.
std::optional<double> readReal(std::string_view number);

}  // namespace orvane
