#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tools/signin/PictureView.h"

namespace signin {

/// Whether a person may be at standard input.
bool inputIsTerminal();

/// How many columns standard output has: the terminal's, else those of COLUMNS in the environment, else 80.
std::size_t outputColumns();

/// The colours that standard output can show; none where NO_COLOR is in the environment.
Palette outputPalette();

/// Puts the question and reads lines until one is not empty. Nothing at the end of the input.
std::optional<std::string> ask(std::string_view question);

/// Writes a text to standard output at once.
void print(std::string_view text);

/// Writes "orvane-signin: ", the text and a line end to standard error, behind what was printed.
void complain(std::string_view text);

}  // namespace signin
