#pragma once

#include <string>
#include <string_view>

namespace devservice {

/// What a request line asks for.
struct Target {
  std::string path;   ///< Without percent signs that stand for something else.
  std::string query;  ///< What follows the question mark, as it came.
};

/// Takes any text for a target.
Target parseTarget(std::string_view text);

/// The text, in which each percent sign with two hexadecimal digits stands for that byte.
std::string percentDecoded(std::string_view text);

}  // namespace devservice
