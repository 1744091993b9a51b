#pragma once

#include <cstdio>
#include <mutex>
#include <optional>
#include <string>

#include "tools/signin/Step.h"
#include "tools/signin/StepEnd.h"

namespace signin {

/// Writes the lines of --json: an object for each step that has ended. Writes nothing before open(), and
/// nothing after an interruption. Its functions may be called from any thread. Must never be destroyed, since
/// a signal handler uses it.
class Report {
 public:
  /// Writes the lines to this file from now on. Also installs a handler of SIGABRT that writes the line of
  /// the step that the library aborts. To be called at most once.
  void open(std::FILE* lines);

  void begin(Step step);
  /// Ends the step that was begun, or the program if there is none.
  void end(const StepEnd& stepEnd);

 private:
  static void handleSignal(int signal);

  std::mutex mutex_;
  std::FILE* lines_ = nullptr;
  std::optional<Step> step_;
  std::string abortionLine_;  // Made in advance: a signal handler must not allocate memory.
};

}  // namespace signin
