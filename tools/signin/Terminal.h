#pragma once

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "tools/signin/PictureView.h"

namespace signin {

/// Returns true if a person may be at standard input.
bool inputIsTerminal();

/// Returns how many columns standard output has: the terminal's, else those of COLUMNS in the environment, else 80.
std::size_t outputColumns();

/// Returns the colours that standard output can show; none where NO_COLOR is in the environment.
Palette outputPalette();

/// Returns standard output, for the caller alone. What is printed goes from now on to standard error if a person is to
/// see it, else nowhere. To be called once. Throws std::system_error.
std::FILE* takeOutput(bool hasPerson);

/// Returns the text with its control characters as \xNN, so that a service cannot command the terminal.
std::string printable(std::string_view text);

/// Puts the question and reads lines until one has more than blanks, without those around it. Returns nothing at the end
/// of the input.
std::optional<std::string> ask(std::string_view question);

/// Writes a text to standard output at once.
void print(std::string_view text);

/// Writes a line to standard error. May be called from any thread, as may what follows.
void writeError(std::string line);

/// Writes "orvane-signin: ", the text and a line end to standard error, after what was printed.
void complain(std::string_view text);

/// Shows on standard error what is waited for, where that is a terminal, until it is hidden or something else is
/// written.
void showWaiting(std::string_view text);
void hideWaiting();

/// Leaves the terminal as it was found, without the line of showWaiting and without colours. Nothing is written
/// after it: for a process that is about to end.
void leaveTerminal();

}  // namespace signin
