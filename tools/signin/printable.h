#pragma once

#include <string>
#include <string_view>

namespace signin {

/// The text with its control characters as \xNN, so that a service cannot command the terminal.
std::string printable(std::string_view text);

}  // namespace signin
