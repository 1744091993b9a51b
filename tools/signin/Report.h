#pragma once

#include <cstdint>
#include <cstdio>
#include <mutex>
#include <optional>
#include <string>

#include "orvane/orvane.h"
#include "tools/signin/Options.h"

namespace signin {

/// How a step, or the program, ended. The first five are the exit statuses of the program; it ends by a signal
/// after the others.
enum class Outcome {
  success,
  refusal,      ///< The service said no.
  usage,        ///< What the program was given, or was not, does not do.
  network,      ///< No reply came, or none that is JSON.
  fault,        ///< The machine lacks something: memory, a port.
  interrupted,  ///< By the person.
  aborted,      ///< By the library, since a reply broke the protocol or a login had none.
};

/// What is told of the end of a step.
struct StepEnd {
  Outcome outcome = Outcome::success;
  std::optional<std::string> domain = std::nullopt;
  std::optional<std::int64_t> code = std::nullopt;
  std::optional<orvane::ErrorKind> kind = std::nullopt;
  std::optional<std::string> message = std::nullopt;
  std::optional<std::string> picture = std::nullopt;  ///< The file that has the picture.
};

/// The lines of --json: an object for each step that ended. Silent until it is opened, and after an
/// interruption. May be used from any thread, and has to live for ever.
class Report {
 public:
  /// Writes the lines to the file. From now on the abortion of a step is told, too.
  void open(std::FILE* lines);

  void begin(Call step);
  /// Ends the step that was begun, if any.
  void end(const StepEnd& stepEnd);

 private:
  static void tellAbortion(int signal);

  std::mutex mutex_;
  std::FILE* lines_ = nullptr;
  std::optional<Call> step_;
  std::string abortionLine_;  // for a signal handler, which may not make it
};

}  // namespace signin
