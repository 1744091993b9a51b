#pragma once

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "tools/signin/PictureView.h"

namespace signin {

/// The program's standard input, output and error. A process has one of each, so all functions are static.
/// Those that write may be called from any thread.
struct Terminal {
  /// Returns true if standard input is a terminal, so that a person may answer.
  static bool inputIsTerminal();

  /// Returns the width of standard output in columns: the terminal's, else COLUMNS in the environment, else
  /// 80.
  static std::size_t outputColumns();

  /// Returns the colours that standard output can show: none if NO_COLOR in the environment is not empty.
  static Palette outputPalette();

  /// Returns standard output. After this, print() writes to standard error if there is a person, else not at
  /// all. To be called at most once. Throws std::system_error.
  static std::FILE* takeOutput(bool isInteractive);

  /// Prints the question and reads a line; asks again while the line is blank. Returns it without leading and
  /// trailing blanks, or nullopt at the end of the input.
  static std::optional<std::string> ask(std::string_view question);

  /// Writes the text to standard output, without waiting for a line end.
  static void print(std::string_view text);

  /// Writes a line to standard error.
  static void writeError(std::string line);

  /// Writes "orvane-signin: " and the text as a line to standard error.
  static void complain(std::string_view text);

  /// Shows on standard error, if that is a terminal, what the program is waiting for. The text disappears
  /// with hideWaiting() or when anything else is written.
  static void showWaiting(std::string_view text);
  static void hideWaiting();

  /// Hides the text of showWaiting(), ends colours, and lets nothing more be written. For a process that is
  /// about to end.
  static void leave();
};

}  // namespace signin
