#include "adapters/host/HostTextRules.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utf8proc.h>

#include "orvane/base/ascii.h"
#include "orvane/base/decodeUTF8.h"
#include "orvane/platform/URLParts.h"

namespace orvane {
namespace {

bool isForbidden(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte <= 0x20 || byte == 0x7F || std::string_view("\"<>\\^`{|}").find(c) != std::string_view::npos;
}

bool hasWholeEscapes(std::string_view text) {
  for (std::size_t at = text.find('%'); at != text.npos; at = text.find('%', at + 1)) {
    if (text.size() - at < 3 || !isHexDigit(text[at + 1]) || !isHexDigit(text[at + 2])) return false;
  }
  return true;
}

/// Allows brackets only around the whole host.
bool isHost(std::string_view host) {
  if (host.starts_with('[')) return host.ends_with(']') && host.find_first_of("[]", 1) == host.size() - 1;
  return host.find_first_of("[]") == host.npos;
}

bool isPort(std::string_view port) {
  if (!std::all_of(port.begin(), port.end(), isDigit)) return false;
  port.remove_prefix(std::min(port.find_first_not_of('0'), port.size()));
  return port.size() < 5 || (port.size() == 5 && port <= "65535");
}

}  // namespace

bool HostTextRules::isURL(std::string_view text) const {
  for (std::size_t at = 0; at < text.size();)
    if (isForbidden(text[at]) || !decodeUTF8(text, at)) return false;
  if (!hasWholeEscapes(text)) return false;
  if (std::count(text.begin(), text.end(), '#') > 1) return false;
  const URLParts parts = splitURL(text);
  return isHost(parts.host) && isPort(parts.port);
}

bool HostTextRules::isAlphanumeric(char32_t codePoint) const {
  // Letters, marks and numbers of all kinds stand in a row among the categories.
  const utf8proc_category_t category = utf8proc_category(static_cast<utf8proc_int32_t>(codePoint));
  return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_NO;
}

}  // namespace orvane
