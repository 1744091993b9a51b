#include "tools/signin/Terminal.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sys/ioctl.h>
#include <unistd.h>

namespace signin {
namespace {

std::string_view environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

}  // namespace

bool inputIsTerminal() {
  return isatty(STDIN_FILENO) != 0;
}

std::size_t outputColumns() {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0) return size.ws_col;
  const std::string_view columns = environment("COLUMNS");
  unsigned short count = 0;
  std::from_chars(columns.data(), columns.data() + columns.size(), count);
  return count != 0 ? count : 80;
}

Palette outputPalette() {
  const std::string_view terminal = environment("TERM");
  if (!isatty(STDOUT_FILENO) || !environment("NO_COLOR").empty() || terminal.empty() || terminal == "dumb") {
    return Palette::characters;
  }
  const std::string_view colours = environment("COLORTERM");
  return colours == "truecolor" || colours == "24bit" ? Palette::direct : Palette::indexed;
}

std::optional<std::string> ask(std::string_view question) {
  std::string answer;
  do {
    print(question);
    if (!std::getline(std::cin, answer)) {
      print("\n");
      return std::nullopt;
    }
  } while (answer.empty());
  return answer;
}

void print(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

void complain(std::string_view text) {
  std::string line("orvane-signin: ");
  line.append(text).push_back('\n');
  std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace signin
