#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace devservice {

/// Size of a picture in pixels.
inline constexpr int pictureWidth = 160;
inline constexpr int pictureHeight = 60;

/// Draws the text, four or five characters of the alphabet, as a person can read it: a PNG of 24-bit colour.
/// The seed decides colours, noise and jitter; equal arguments make equal pictures.
/// Throws std::runtime_error when the picture cannot be encoded.
std::vector<std::uint8_t> drawPicture(std::string_view text, std::uint32_t seed);

}  // namespace devservice
