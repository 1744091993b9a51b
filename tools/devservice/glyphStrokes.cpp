#include "tools/devservice/glyphStrokes.h"

#include <array>

namespace devservice {
namespace {

// In the alphabet's order. A point is two characters: x as a digit, y as a letter from 'a' for 0. A blank
// ends a stroke.
constexpr std::array<std::string_view, alphabet.size()> glyphs = {
    "0m4a8m 2h6h",                       // A
    "8c7b5a3a1b0d0j1l3m5m7l8k",          // C
    "8a0a0m8m 0g6g",                     // E
    "8a0a0m 0g6g",                       // F
    "0a0m 8a8m 0g8g",                    // H
    "7a7j6l4m3m1l0j",                    // J
    "0a0m 8a0h 3f8m",                    // K
    "0a0m8m",                            // L
    "0m0a4h8a8m",                        // M
    "0m0a8m8a",                          // N
    "0m0a5a7b8d7f5g0g",                  // P
    "0m0a5a7b8d7f5g0g 4g8m",             // R
    "0a8a 4a4m",                         // T
    "0a0j1l3m5m7l8j8a",                  // U
    "0a1m4e7m8a",                        // W
    "0a8m 8a0m",                         // X
    "0a4g8a 4g4m",                       // Y
    "0b2a5a7b8d7f5g3g 5g7h8j7l5m2m0l",   // 3
    "6m6a0i8i",                          // 4
    "7b5a3a1b0e0j1l3m5m7l8j7h5g3g1h0j",  // 6
    "0a8a3m",                            // 7
    "1l3m5m7l8i8d7b5a3a1b0d1f3g5g7f8d",  // 9
};

}  // namespace

std::vector<Stroke> glyphStrokes(char character) {
  const std::size_t index = alphabet.find(character);
  if (index == std::string_view::npos) return {};

  std::vector<Stroke> strokes(1);
  const std::string_view path = glyphs[index];
  for (std::size_t i = 0; i < path.size();) {
    if (path[i] == ' ') {
      strokes.emplace_back();
      i += 1;
    } else {
      strokes.back().push_back({double(path[i] - '0'), double(path[i + 1] - 'a')});
      i += 2;
    }
  }
  return strokes;
}

}  // namespace devservice
