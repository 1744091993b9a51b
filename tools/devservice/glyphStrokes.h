#pragma once

#include <string_view>
#include <vector>

namespace devservice {

struct Point {
  double x;
  double y;
};

/// A line through the points, in their order.
using Stroke = std::vector<Point>;

/// The characters that can be drawn.
inline constexpr std::string_view drawable = "ACEFHJKLMNPRTUWXY34679BDGIOQSVZ01258";
/// Those of random picture texts. None looks like another one in upper or lower case.
inline constexpr std::string_view alphabet = drawable.substr(0, 22);

/// Returns the strokes of a character that can be drawn, in a box from (0, 0) at the top left to (8, 12).
/// Returns none for other characters.
std::vector<Stroke> glyphStrokes(char character);

}  // namespace devservice
