#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace signin {

/// What a terminal draws with.
enum class Palette {
  characters,  ///< ASCII characters, the denser the darker.
  indexed,     ///< Half blocks in the 256 colours.
  direct,      ///< Half blocks in 24-bit colour.
};

/// Draws the picture in the PNG file as lines of text, one column a pixel, scaled down where it is wider or
/// higher than `columns` (at least 1) pixels. Nothing where the file is no PNG, is damaged, or has a side of
/// more than 4096 pixels.
std::optional<std::string> viewPicture(std::span<const std::uint8_t> file, std::size_t columns,
                                       Palette palette);

}  // namespace signin
