#pragma once

#include <string>
#include <string_view>

namespace signin {

/// Returns the text quoted as one word of a bash command, without line ends.
std::string shellWord(std::string_view text);

}  // namespace signin
