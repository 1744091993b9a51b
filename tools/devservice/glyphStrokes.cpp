#include "tools/devservice/glyphStrokes.h"

#include <array>

namespace devservice {
namespace {

// In the order of `drawable`. A point is two characters: x as a digit, y as a letter from 'a' for 0. A blank
// ends a stroke.
constexpr std::array<std::string_view, drawable.size()> glyphs = {
    "0m4a8m 2h6h",                               // A
    "8c7b5a3a1b0d0j1l3m5m7l8k",                  // C
    "8a0a0m8m 0g6g",                             // E
    "8a0a0m 0g6g",                               // F
    "0a0m 8a8m 0g8g",                            // H
    "7a7j6l4m3m1l0j",                            // J
    "0a0m 8a0h 3f8m",                            // K
    "0a0m8m",                                    // L
    "0m0a4h8a8m",                                // M
    "0m0a8m8a",                                  // N
    "0m0a5a7b8d7f5g0g",                          // P
    "0m0a5a7b8d7f5g0g 4g8m",                     // R
    "0a8a 4a4m",                                 // T
    "0a0j1l3m5m7l8j8a",                          // U
    "0a1m4e7m8a",                                // W
    "0a8m 8a0m",                                 // X
    "0a4g8a 4g4m",                               // Y
    "0b2a5a7b8d7f5g3g 5g7h8j7l5m2m0l",           // 3
    "6m6a0i8i",                                  // 4
    "7b5a3a1b0e0j1l3m5m7l8j7h5g3g1h0j",          // 6
    "0a8a3m",                                    // 7
    "1l3m5m7l8i8d7b5a3a1b0d1f3g5g7f8d",          // 9
    "0g5g7f7b5a0a0m6m8k8i6g5g",                  // B
    "0a0m4m7k8h8f7c4a0a",                        // D
    "8c7b5a3a1b0d0j1l3m5m7l8j8g5g",              // G
    "1a7a 4a4m 1m7m",                            // I
    "3a1b0d0j1l3m5m7l8j8d7b5a3a",                // O
    "3a1b0d0j1l3m5m7l8j8d7b5a3a 5j8m",           // Q
    "8c7b5a3a1b0d1f7h8j7l5m3m1l0k",              // S
    "0a4m8a",                                    // V
    "0a8a0m8m",                                  // Z
    "3a1b0d0j1l3m5m7l8j8d7b5a3a 6c2k",           // 0
    "1d4a4m 1m7m",                               // 1
    "0d1b3a5a7b8d7f0m8m",                        // 2
    "8a1a0g5f7g8i7l5m2m0k",                      // 5
    "3g1f0d1b3a5a7b8d7f5g3g1h0j1l3m5m7l8j7h5g",  // 8
};

}  // namespace

std::vector<Stroke> glyphStrokes(char character) {
  const std::size_t index = drawable.find(character);
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
