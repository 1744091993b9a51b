#pragma once

#include <string_view>

namespace orvane {

/// The pieces of a URL that decide where a request goes; views into its text. Each may be empty.
struct URLParts {
  std::string_view scheme;
  std::string_view host;  ///< With its brackets, where it has them.
  std::string_view port;

  /// The port to connect to, the scheme's own where the URL names none.
  std::string_view portOrDefault() const noexcept;
};

URLParts splitURL(std::string_view url) noexcept;

}  // namespace orvane
