#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "orvane/orvane.h"

namespace signin {

/// How a step, or the program, ended. The values up to `fault` are the program's exit statuses; after the
/// other two it ends by a signal.
enum class StepOutcome {
  success,
  refusal,      ///< The service refused the call.
  usage,        ///< An option is wrong, an answer is missing, or the picture cannot be saved.
  network,      ///< The call got no reply, or none that is JSON.
  fault,        ///< The machine lacks something, such as memory or a port.
  interrupted,  ///< A signal such as Ctrl-C's ended the program.
  aborted,      ///< The library stopped the process: a reply broke the protocol, or the login got none.
};

/// What is reported when a step has ended.
struct StepEnd {
  StepOutcome outcome = StepOutcome::success;
  std::optional<std::string> domain = std::nullopt;
  std::optional<std::int64_t> code = std::nullopt;
  std::optional<orvane::ErrorKind> kind = std::nullopt;
  std::optional<std::string> message = std::nullopt;
  std::optional<std::string> picture = std::nullopt;  ///< The file that the picture was saved to.
};

}  // namespace signin
