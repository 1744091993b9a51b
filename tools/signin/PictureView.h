#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace signin {

/// How a picture is drawn on a terminal.
enum class Palette {
  characters,  ///< ASCII characters; denser ones are darker.
  indexed,     ///< Half blocks in the 256 colours.
  direct,      ///< Half blocks in 24-bit colour.
};

/// A picture as text.
struct PictureView {
  std::string lines;
  /// False if the picture may be hard to read: scaled down to less than half, or drawn without colours.
  bool isClear = false;
};

/// Returns the picture in a PNG file as lines of text, one column per pixel. A picture wider or higher than
/// `columns` pixels (at least 1) is scaled down. Returns nullopt if the file is not a PNG, is damaged, or has
/// a side of more than 4096 pixels.
std::optional<PictureView> viewPicture(std::span<const std::uint8_t> file, std::size_t columns,
                                       Palette palette);

}  // namespace signin
