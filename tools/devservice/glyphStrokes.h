#pragma once

#include <string_view>
#include <vector>

namespace devservice {

struct Point {
  double x;
  double y;
};

/// A line through the points in turn.
using Stroke = std::vector<Point>;

/// The characters pictures are made of: none is easily taken for another one, in either case.
inline constexpr std::string_view alphabet = "ACEFHJKLMNPRTUWXY34679";

/// The strokes of a character of the alphabet in a box from (0, 0), the top left, to (8, 12); none for other
/// characters.
std::vector<Stroke> glyphStrokes(char character);

}  // namespace devservice
