#pragma once

#include <string>
#include <string_view>

namespace signin {

/// A text message as a phone shows it, in a box, a sentence a line. Only ASCII comes out straight.
std::string textBubble(std::string_view text);

}  // namespace signin
