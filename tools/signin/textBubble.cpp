#include "tools/signin/textBubble.h"

#include <algorithm>
#include <vector>

namespace signin {
namespace {

std::vector<std::string_view> sentences(std::string_view text) {
  std::vector<std::string_view> result;
  for (std::size_t end = text.find(". "); end != text.npos; end = text.find(". ")) {
    result.push_back(text.substr(0, end + 1));
    text.remove_prefix(end + 2);
  }
  result.push_back(text);
  return result;
}

}  // namespace

std::string textBubble(std::string_view text) {
  const std::vector<std::string_view> lines = sentences(text);
  const std::size_t width = std::ranges::max(lines, {}, &std::string_view::size).size();
  std::string edge;
  while (edge.size() < (width + 2) * std::string_view("─").size()) edge.append("─");

  std::string box = "  ╭" + edge + "╮\n";
  for (const std::string_view line : lines) {
    box.append("  │ ").append(line).append(width - line.size(), ' ').append(" │\n");
  }
  return box + "  ╰" + edge + "╯\n";
}

}  // namespace signin
