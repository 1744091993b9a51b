#pragma once

#include <cstddef>
#include <iterator>

namespace signin {

/// The calls of a sign-in, in their order.
enum class Step { picture, code, login };

/// The names of the steps on the command line, in error messages and in the lines of --json.
inline constexpr const char* stepNames[] = {"picture", "code", "login"};
static_assert(std::size(stepNames) == static_cast<std::size_t>(Step::login) + 1);

}  // namespace signin
