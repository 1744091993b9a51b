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

/// A picture as text.
struct PictureView {
  std::string lines;
  bool isClear =
      false;  ///< False where many pixels became one, or there were no colours, so that it may be hard to read.
};

/// Draws the picture in the PNG file as lines of text, one column per pixel, scaled down where it is wider or
/// higher than `columns` (at least 1) pixels. Returns nothing where the file is no PNG, is damaged, or has a side of
/// more than 4096 pixels.
std::optional<PictureView> viewPicture(std::span<const std::uint8_t> file, std::size_t columns,
                                       Palette palette);

}  // namespace signin
