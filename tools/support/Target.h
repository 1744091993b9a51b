#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tools/support/Members.h"

namespace support {

/// The target of a request line, in its parts.
struct Target {
  std::string path;   ///< Percent-decoded.
  std::string query;  ///< The text after the question mark, not decoded.
  std::optional<std::string>
      authority;  ///< Set if the target is a URL, as for a proxy. Empty unless its scheme is http.
};

/// Parses any text; none is refused.
Target parseTarget(std::string_view text);

/// Returns the parameters of a query, percent-decoded. A plus sign stays a plus sign. Of equal names the last
/// counts.
Members queryMembers(std::string_view query);

}  // namespace support
