#include "tools/devservice/Message.h"

#include <algorithm>

namespace devservice {
namespace {

char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, lowered, lowered);
}

std::optional<std::string_view> Request::header(std::string_view name) const {
  const auto found = std::ranges::find_if(
      headers, [&](const auto& header) { return equalIgnoringCase(header.first, name); });
  return found == headers.end() ? std::nullopt : std::optional<std::string_view>(found->second);
}

}  // namespace devservice
