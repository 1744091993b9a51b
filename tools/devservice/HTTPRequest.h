#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace devservice {

/// A request as the service sees it, independent of the connection that carried it.
struct HTTPRequest {
  std::string method;
  std::string path;  ///< Percent-decoded.
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  std::string peer;        ///< The caller's numeric address.
  std::string query = {};  ///< The text after the question mark, not decoded.
  bool isProxied = false;  ///< True if sent to the service as a proxy. "Host" is then taken from the URL.

  /// Returns the value of the first header field of that name, in any case. Valid as long as the request.
  std::optional<std::string_view> header(std::string_view name) const;
};

}  // namespace devservice
