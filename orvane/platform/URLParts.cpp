#include "orvane/platform/URLParts.h"

#include <algorithm>
#include <cstddef>

#include "orvane/base/ascii.h"
#include "orvane/platform/URLRequest.h"

namespace orvane {
namespace {

bool isScheme(std::string_view text) {
  const auto isSchemeCharacter = [](char c) {
    return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
  };
  return !text.empty() && isLetter(text[0]) && std::all_of(text.begin(), text.end(), isSchemeCharacter);
}

std::size_t findDelimiter(std::string_view url, bool orColon) {
  const auto isDelimiter = [orColon](char c) {
    return c == '/' || c == '?' || c == '#' || (orColon && c == ':');
  };
  const auto place = std::find_if(url.begin(), url.end(), isDelimiter);
  return place == url.end() ? url.npos : static_cast<std::size_t>(place - url.begin());
}

}  // namespace

std::string_view URLParts::portOrDefault() const noexcept {
  if (!port.empty()) return port;
  return equalIgnoringCase(scheme, "https") ? "443" : "80";
}

URLParts splitURL(std::string_view url) noexcept {
  URLParts parts;
  const std::size_t colon = findDelimiter(url, true);
  if (colon != url.npos && url[colon] == ':' && isScheme(url.substr(0, colon))) {
    parts.scheme = url.substr(0, colon);
    url.remove_prefix(colon + 1);
  }
  if (!url.starts_with("//")) return parts;
  url.remove_prefix(2);
  std::string_view authority = url.substr(0, findDelimiter(url, false));
  if (const std::size_t at = authority.rfind('@'); at != authority.npos) authority.remove_prefix(at + 1);

  const std::size_t bracket = authority.starts_with('[') ? authority.find(']') : 0;
  const std::size_t portColon = bracket == authority.npos ? authority.npos : authority.find(':', bracket);
  parts.host = authority.substr(0, portColon);
  if (portColon != authority.npos) parts.port = authority.substr(portColon + 1);
  return parts;
}

}  // namespace orvane
