#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace devservice {

/// Size of a picture in pixels.
inline constexpr int pictureWidth = 160;
inline constexpr int pictureHeight = 60;

/// Returns a PNG file in 24-bit colour that shows the text: four or five of the characters in
/// glyphStrokes.h, with noise that a person can read through. The seed determines colours, noise and jitter,
/// so equal arguments make equal files. Throws std::runtime_error if the picture cannot be encoded.
std::vector<std::uint8_t> drawPicture(std::string_view text, std::uint32_t seed);

}  // namespace devservice
