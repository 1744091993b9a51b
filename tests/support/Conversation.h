#pragma once

#include <gtest/gtest.h>
#include <pty.h>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "tests/support/spawn.h"

namespace orvane::test {

/// A program at a terminal of 40 columns.
class Conversation {
 public:
  explicit Conversation(std::vector<std::string> words,
                        std::vector<std::string> environment = {"TERM=xterm"}) {
    const winsize size{.ws_row = 24, .ws_col = 40, .ws_xpixel = 0, .ws_ypixel = 0};
    const std::vector<char*> arguments = pointers(words), variables = pointers(environment);
    child_ = forkpty(&terminal_, nullptr, nullptr, &size);
    if (child_ == 0) _exit(execvpe(arguments.front(), arguments.data(), variables.data()));
  }
  Conversation(const Conversation&) = delete;
  ~Conversation() { close(terminal_); }

  /// Reads until `text` comes, and returns what came before it. Fails if the program ends first.
  std::string hear(std::string_view text) {
    char buffer[4096];
    ssize_t count = 0;
    const auto readMore = [&] { return (count = read(terminal_, buffer, sizeof buffer)) > 0; };
    // Reads twice, because Linux may fail a read when the program ends, with output that is still to come.
    while (heard_.find(text) == heard_.npos && (readMore() || readMore())) {
      heard_.append(buffer, static_cast<std::size_t>(count));
    }
    const std::string before = heard_.substr(0, heard_.find(text));
    EXPECT_LE(before.size() + text.size(), heard_.size())
        << "waited for \"" << text << "\" and heard " << before;
    heard_.erase(0, before.size() + text.size());
    return before;
  }

  /// Types `text`.
  void say(const std::string& text) {
    EXPECT_EQ(write(terminal_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  /// Waits until the program ends; see endOf().
  int status() const { return awaitEnd(child_); }

 private:
  int terminal_ = -1;
  pid_t child_ = -1;
  std::string heard_;
};

}  // namespace orvane::test
