#include "tools/signin/PictureView.h"

#include <algorithm>
#include <array>
#include <memory>
#include <png.h>
#include <string_view>
#include <utility>
#include <vector>

namespace signin {
namespace {

constexpr std::size_t longestSide = 4096;

using Colour = std::array<unsigned, 3>;  // red, green, blue from 0 to 255

struct Raster {
  std::size_t width;
  std::size_t height;
  std::vector<std::uint8_t> samples;

  /// Returns the mean colour of the pixels in a box, which must not be empty.
  Colour mean(std::size_t left, std::size_t top, std::size_t right, std::size_t bottom) const {
    std::array<std::size_t, 3> sums{};
    for (std::size_t y = top; y < bottom; ++y) {
      for (std::size_t x = left; x < right; ++x) {
        for (std::size_t i = 0; i < sums.size(); ++i) sums[i] += samples[(y * width + x) * 3 + i];
      }
    }
    Colour colour{};
    const std::size_t count = (right - left) * (bottom - top);
    for (std::size_t i = 0; i < sums.size(); ++i) colour[i] = static_cast<unsigned>(sums[i] / count);
    return colour;
  }
};

std::optional<Raster> decode(std::span<const std::uint8_t> file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_memory(&image, file.data(), file.size())) return std::nullopt;
  const std::unique_ptr<png_image, decltype(&png_image_free)> release(&image, png_image_free);
  if (image.width > longestSide || image.height > longestSide) return std::nullopt;

  image.format = PNG_FORMAT_RGB;
  Raster raster{image.width, image.height, std::vector<std::uint8_t>(PNG_IMAGE_SIZE(image))};
  const png_color paper{255, 255, 255};
  if (!png_image_finish_read(&image, &paper, raster.samples.data(), 0, nullptr)) return std::nullopt;
  return raster;
}

/// Returns the number of the nearest of the 256 colours in their cube, whose sides have the levels 0, 95,
/// 135, 175, 215 and 255.
unsigned indexedColour(const Colour& colour) {
  const auto level = [](unsigned sample) { return sample < 48 ? 0 : sample < 115 ? 1 : (sample - 35) / 40; };
  return 16 + 36 * level(colour[0]) + 6 * level(colour[1]) + level(colour[2]);
}

std::string colourCode(unsigned target, const Colour& colour, Palette palette) {
  std::string code("\x1b[");
  code.append(std::to_string(target));
  if (palette == Palette::indexed) {
    code.append(";5;").append(std::to_string(indexedColour(colour)));
  } else {
    code.append(";2");
    for (const unsigned sample : colour) code.append(";").append(std::to_string(sample));
  }
  return code.append("m");
}

char shade(const Colour& upper, const Colour& lower) {
  constexpr std::string_view ramp = "@%#*+=-:. ";
  const auto light = [](const Colour& c) { return 2 * c[0] + 5 * c[1] + c[2]; };  // At most 2040.
  return ramp[(light(upper) + light(lower)) * ramp.size() / 4096];
}

}  // namespace

std::optional<PictureView> viewPicture(std::span<const std::uint8_t> file, std::size_t columns,
                                       Palette palette) {
  const std::optional<Raster> picture = decode(file);
  if (!picture) return std::nullopt;
  const std::size_t side = std::max({picture->width, picture->height, columns});
  const std::size_t width = std::max<std::size_t>(picture->width * columns / side, 1);
  const std::size_t rows = std::max<std::size_t>((picture->height * columns / side + 1) / 2, 1);

  const auto pixel = [&](std::size_t x, std::size_t y) {
    const std::size_t left = x * picture->width / width;
    const std::size_t top = y * picture->height / (2 * rows);
    return picture->mean(left, top, std::max((x + 1) * picture->width / width, left + 1),
                         std::max((y + 1) * picture->height / (2 * rows), top + 1));
  };
  std::string view;
  for (std::size_t row = 0; row < rows; ++row) {
    for (std::size_t x = 0; x < width; ++x) {
      const Colour upper = pixel(x, 2 * row);
      const Colour lower = pixel(x, 2 * row + 1);
      if (palette == Palette::characters) {
        view.push_back(shade(upper, lower));
      } else {
        view.append(colourCode(38, upper, palette)).append(colourCode(48, lower, palette)).append("▀");
      }
    }
    view.append(palette == Palette::characters ? "\n" : "\x1b[0m\n");
  }
  return PictureView{std::move(view), palette != Palette::characters && side <= 2 * columns};
}

}  // namespace signin
