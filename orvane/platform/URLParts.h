#pragma once

#include <string_view>

namespace orvane {

/// The parts of a URL that decide where a request goes. Each is a view into the URL, and may be empty.
struct URLParts {
  std::string_view scheme;
  std::string_view host;  ///< An IPv6 address includes its brackets.
  std::string_view port;

  /// Returns the port to connect to: the scheme's default port if the URL names none.
  std::string_view portOrDefault() const noexcept;
};

/// Splits `url`, which need not be a valid URL, and must outlive the result.
URLParts splitURL(std::string_view url) noexcept;

}  // namespace orvane
