#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tools/devservice/Members.h"

namespace devservice {

/// What a request line asks for.
struct Target {
  std::string path;                      ///< Without percent signs that stand for something else.
  std::string query;                     ///< What follows the question mark, as it came.
  std::optional<std::string> authority;  ///< Of a URL, which is sent to a proxy; empty where it is not http.
};

/// Takes any text for a target.
Target parseTarget(std::string_view text);

/// The parameters of a query by name. A plus sign is one.
Members queryMembers(std::string_view query);

}  // namespace devservice
