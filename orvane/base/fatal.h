#pragma once

#include <string_view>

namespace orvane {

/// Stops the process: writes "orvane: ", `what` and a line end to standard error and aborts. `what` says
/// which call and which member were wrong, and never holds a number, a code, an identifier or a piece of a
/// reply.
[[noreturn]] void fatal(std::string_view what);

}  // namespace orvane
