#pragma once

#include <string>
#include <unistd.h>

/// Returns the next line of standard input, without the line end. Reads no byte beyond it, so that an event
/// loop that waits for input sees the rest.
inline std::string readLine() {
  std::string line;
  for (char c = 0; read(STDIN_FILENO, &c, 1) == 1 && c != '\n';) line.push_back(c);
  return line;
}
