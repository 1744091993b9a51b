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

/// Writes a line to standard error. May be called from any thread, as may what follows.
void writeError(std::string line);

/// Writes "orvane-signin: ", the text and a line end to standard error, behind what was printed.
void complain(std::string_view text);

/// Shows on standard error what is waited for, where that is a terminal, until it is hidden or something else is
/// written.
void showWaiting(std::string_view text);
void hideWaiting();

/// Leaves the terminal as it was found, without the line of showWaiting and without colours. Nothing is written
/// after it: for a process that is about to end.
void leaveTerminal();

}  // namespace signin
