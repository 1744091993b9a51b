#include "tools/signin/Terminal.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <mutex>
#include <string>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace signin {
namespace {

/// Guarded by the mutex, as is all writing.
struct Screen {
  std::mutex mutex;
  bool isWaiting = false;  // True while the text of showWaiting() is the last line of standard error.
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

bool Terminal::inputIsTerminal() {
  return isatty(STDIN_FILENO) != 0;
}

std::size_t Terminal::outputColumns() {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0) return size.ws_col;
  const std::string_view columns = environment("COLUMNS");
  unsigned short count = 0;
  std::from_chars(columns.data(), columns.data() + columns.size(), count);
  return count != 0 ? count : 80;
}

Palette Terminal::outputPalette() {
  if (!understandsEscapes(STDOUT_FILENO) || !environment("NO_COLOR").empty()) return Palette::characters;
  const std::string_view colours = environment("COLORTERM");
  return colours == "truecolor" || colours == "24bit" ? Palette::direct : Palette::indexed;
}

std::FILE* Terminal::takeOutput(bool isInteractive) {
  const auto checked = [](int result) {
    if (result < 0) throw std::system_error(errno, std::system_category(), "standard output");
    return result;
  };
  const int taken = checked(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0));
  const int others = isInteractive ? STDERR_FILENO : checked(open("/dev/null", O_WRONLY | O_CLOEXEC));
  checked(dup2(others, STDOUT_FILENO));
  std::FILE* const file = fdopen(taken, "w");
  checked(file ? 0 : -1);
  return file;
}

std::optional<std::string> Terminal::ask(std::string_view question) {
  constexpr const char* blanks = " \t\r";
  std::string line;
  do {
    print(question);
    if (!std::getline(std::cin, line)) {
      print("\n");
      return std::nullopt;
    }
  } while (line.find_first_not_of(blanks) == line.npos);
  const std::size_t start = line.find_first_not_of(blanks);
  return line.substr(start, line.find_last_not_of(blanks) + 1 - start);
}

void Terminal::print(std::string_view text) {
  const std::lock_guard lock(screen().mutex);
  put(text, stdout);
}

void Terminal::writeError(std::string line) {
  line.push_back('\n');
  const std::lock_guard lock(screen().mutex);
  put(line, stderr);
}

void Terminal::complain(std::string_view text) {
  writeError(std::string("orvane-signin: ").append(text));
}

void Terminal::showWaiting(std::string_view text) {
  if (!understandsEscapes(STDERR_FILENO)) return;
  const std::lock_guard lock(screen().mutex);
  put(text, stderr);
  screen().isWaiting = true;
}

void Terminal::hideWaiting() {
  const std::lock_guard lock(screen().mutex);
  put("", stderr);
}

void Terminal::leave() {
  screen().mutex.lock();  // Never unlocked.
  put(outputPalette() == Palette::characters ? "" : "\x1b[0m", stdout);
}

}  // namespace signin
