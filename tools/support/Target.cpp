#include "tools/support/Target.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>
#include <charconv>
#include <utility>

namespace support {
namespace {

/// Returns the text before and after the first `mark`.
std::pair<std::string_view, std::string_view> split(std::string_view text, char mark) {
  const std::size_t place = std::min(text.find(mark), text.size());
  return {text.substr(0, place), text.substr(std::min(place + 1, text.size()))};
}

/// Returns the text with each percent sign and two hexadecimal digits replaced by that byte.
std::string percentDecoded(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string_view digits = text.substr(i + 1, 2);
    unsigned char byte = 0;
    const char* const end = digits.data() + digits.size();
    const bool stands =
        text[i] == '%' && digits.size() == 2 && std::from_chars(digits.data(), end, byte, 16).ptr == end;
    decoded.push_back(stands ? static_cast<char>(byte) : text[i]);
    if (stands) i += 2;
  }
  return decoded;
}

}  // namespace

Target parseTarget(std::string_view text) {
  Target target;
  if (const std::size_t colon = text.find("://"); !text.starts_with('/') && colon != text.npos) {
    const bool isHTTP = boost::beast::iequals(text.substr(0, colon), "http");
    text.remove_prefix(colon + 3);
    const std::size_t end = std::min(text.find_first_of("/?"), text.size());
    target.authority = isHTTP ? text.substr(0, end) : "";
    text.remove_prefix(end);
  }
  const auto [path, query] = split(text, '?');
  target.path = path.empty() ? "/" : percentDecoded(path);
  target.query = query;
  return target;
}

Members queryMembers(std::string_view query) {
  Members members;
  while (!query.empty()) {
    const auto [parameter, rest] = split(query, '&');
    const auto [name, value] = split(parameter, '=');
    if (!parameter.empty()) members.insert_or_assign(percentDecoded(name), percentDecoded(value));
    query = rest;
  }
  return members;
}

}  // namespace support
