#pragma once

#include <string>
#include <unistd.h>

/// Reads a line from standard input, and not a byte more, so that a loop that waits for input sees what follows.
inline std::string readLine() {
  std::string line;
  for (char c = 0; read(STDIN_FILENO, &c, 1) == 1 && c != '\n';) line.push_back(c);
  return line;
}
