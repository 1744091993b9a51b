#pragma once

#include <string>
#include <string_view>

namespace signin {

/// Returns the text with its control characters as \xNN, so that what a service sends cannot control the
/// terminal.
std::string printable(std::string_view text);

}  // namespace signin
