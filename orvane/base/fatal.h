#pragma once

#include <string_view>

namespace orvane {

/// Stops the process: writes "orvane: ", `what` and a line end to standard error, then aborts. `what` names
/// the call and the member that was wrong. It must not contain personal data: no mobile number, code,
/// identifier or part of a reply.
[[noreturn]] void fatal(std::string_view what);

}  // namespace orvane
