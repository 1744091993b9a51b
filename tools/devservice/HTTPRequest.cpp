#include "tools/devservice/HTTPRequest.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>

namespace devservice {

std::optional<std::string_view> HTTPRequest::header(std::string_view name) const {
  const auto found = std::ranges::find_if(
      headers, [&](const auto& header) { return boost::beast::iequals(header.first, name); });
  return found == headers.end() ? std::nullopt : std::optional<std::string_view>(found->second);
}

}  // namespace devservice
