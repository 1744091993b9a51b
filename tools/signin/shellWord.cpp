#include "tools/signin/shellWord.h"

#include "tools/signin/printable.h"
#include "tools/support/appendHexEscape.h"

namespace signin {

std::string shellWord(std::string_view text) {
  bool hasControls = false;
  for (std::size_t at = 0; at < text.size(); ++at) hasControls |= controlSize(text.substr(at)) > 0;
  std::string word(hasControls ? "$'" : "'");
  while (!text.empty()) {
    const std::size_t size = controlSize(text);
    const char c = text.front();
    for (const char control : text.substr(0, size)) support::appendHexEscape(word, control);
    if (size > 0) {
      text.remove_prefix(size);
      continue;
    }
    if (c == '\'') {
      word.append(hasControls ? "\\'" : "'\\''");
    } else if (c == '\\' && hasControls) {
      word.append("\\\\");
    } else {
      word.push_back(c);
    }
    text.remove_prefix(1);
  }
  return word + "'";
}

}  // namespace signin
