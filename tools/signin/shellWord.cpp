#include "tools/signin/shellWord.h"

#include <algorithm>

#include "tools/devservice/appendHexEscape.h"

namespace signin {

std::string shellWord(std::string_view text) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; };
  const bool hasControls = std::ranges::any_of(text, isControl);
  std::string word(hasControls ? "$'" : "'");
  for (const char c : text) {
    if (isControl(c)) {
      devservice::appendHexEscape(word, c);
    } else if (c == '\'') {
      word.append(hasControls ? "\\'" : "'\\''");
    } else if (c == '\\' && hasControls) {
      word.append("\\\\");
    } else {
      word.push_back(c);
    }
  }
  return word + "'";
}

}  // namespace signin
