#include "tools/devservice/Predictions.h"

#include "tools/devservice/glyphStrokes.h"

namespace devservice {

bool isCode(std::string_view text) {
  return text.size() == 6 && text.find_first_not_of("0123456789") == text.npos;
}

bool isPictureText(std::string_view text) {
  return (text.size() == 4 || text.size() == 5) && text.find_first_not_of(drawable) == text.npos;
}

}  // namespace devservice
