#include "tools/signin/Terminal.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

namespace signin {
namespace {

/// Who writes holds the mutex.
struct Screen {
  std::mutex mutex;
  bool isWaiting = false;  // the last line of standard error says what is waited for
};

Screen& screen() {
  static Screen& instance = *new Screen;
  return instance;
}

void put(std::string_view text, std::FILE* file) {
  if (std::exchange(screen().isWaiting, false)) put("\r\x1b[K", stderr);
  std::fwrite(text.data(), 1, text.size(), file);
  std::fflush(file);
}

std::string_view environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

bool understandsEscapes(int descriptor) {
  const std::string_view terminal = environment("TERM");
  return isatty(descriptor) && !terminal.empty() && terminal != "dumb";
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
  if (!understandsEscapes(STDOUT_FILENO) || !environment("NO_COLOR").empty()) return Palette::characters;
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
  const std::lock_guard lock(screen().mutex);
  put(text, stdout);
}

void writeError(std::string line) {
  line.push_back('\n');
  const std::lock_guard lock(screen().mutex);
  put(line, stderr);
}

void complain(std::string_view text) {
  writeError(std::string("orvane-signin: ").append(text));
}

void showWaiting(std::string_view text) {
  if (!understandsEscapes(STDERR_FILENO)) return;
  const std::lock_guard lock(screen().mutex);
  put(text, stderr);
  screen().isWaiting = true;
}

void hideWaiting() {
  const std::lock_guard lock(screen().mutex);
  put("", stderr);
}

void leaveTerminal() {
  screen().mutex.lock();  // for good
  put(outputPalette() == Palette::characters ? "" : "\x1b[0m", stdout);
}

}  // namespace signin
