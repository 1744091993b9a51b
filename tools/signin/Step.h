#pragma once

namespace signin {

/// The calls of a sign-in, in their order.
enum class Step { picture, code, login };

/// The names of the steps on the command line, in error messages and in the lines of --json.
inline constexpr const char* stepNames[] = {"picture", "code", "login"};

}  // namespace signin
