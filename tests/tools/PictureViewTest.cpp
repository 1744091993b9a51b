#include <gtest/gtest.h>
#include <iterator>
#include <tuple>
#include <vector>

#include "tools/signin/PictureView.h"

namespace signin {
namespace {

/// A PNG file: red and green over blue and white.
const std::uint8_t fourPixels[] = {
    0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x48, 0x44,
    0x52, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x02, 0x08, 0x02, 0x00, 0x00, 0x00, 0xfd,
    0xd4, 0x9a, 0x73, 0x00, 0x00, 0x00, 0x12, 0x49, 0x44, 0x41, 0x54, 0x78, 0xda, 0x63, 0xf8,
    0xcf, 0xc0, 0xc0, 0x00, 0xc2, 0x0c, 0xff, 0x81, 0x00, 0x00, 0x1f, 0xee, 0x05, 0xfb, 0xf1,
    0xab, 0xba, 0x77, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82};

TEST(SignInPicture, IsDrawnToFitUnlessDamaged) {
  const std::tuple<std::size_t, Palette, std::string> cases[] = {
      {2, Palette::indexed, "\x1b[38;5;196m\x1b[48;5;21m▀\x1b[38;5;46m\x1b[48;5;231m▀\x1b[0m\n"},
      {1, Palette::direct, "\x1b[38;2;127;127;0m\x1b[48;2;127;127;255m▀\x1b[0m\n"},
      {80, Palette::characters, "%.\n"},
  };
  for (const auto& [width, palette, view] : cases) {
    SCOPED_TRACE(width);
    EXPECT_EQ(viewPicture(fourPixels, width, palette)->lines, view);
    EXPECT_EQ(viewPicture(fourPixels, width, palette)->isClear, palette != Palette::characters);
  }
  EXPECT_FALSE(viewPicture(std::vector<std::uint8_t>(1000, 0x2A), 80, Palette::direct));
  for (std::size_t size = 0; size < std::size(fourPixels) - 16; ++size) {
    EXPECT_FALSE(viewPicture(std::span(fourPixels).first(size), 80, Palette::direct)) << size;
  }
}

}  // namespace
}  // namespace signin
