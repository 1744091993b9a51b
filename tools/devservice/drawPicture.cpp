#include "tools/devservice/drawPicture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <png.h>
#include <random>
#include <stdexcept>

#include "tools/devservice/glyphStrokes.h"

namespace devservice {
namespace {

using Colour = std::array<double, 3>;  // red, green, blue from 0 to 255

double distance(Point p, Point a, Point b) {
  const Point along{b.x - a.x, b.y - a.y};
  const double square = along.x * along.x + along.y * along.y;
  const double dot = (p.x - a.x) * along.x + (p.y - a.y) * along.y;
  const double t = square > 0 ? std::clamp(dot / square, 0.0, 1.0) : 0.0;
  const double dx = p.x - a.x - t * along.x;
  const double dy = p.y - a.y - t * along.y;
  return std::sqrt(dx * dx + dy * dy);
}

/// A canvas that is slightly waved, and with it all that is drawn on it.
class Canvas {
 public:
  Canvas(Colour paper, double phase)
      : phase_(phase), pixels_(std::size_t{pictureWidth} * pictureHeight, paper) {}

  /// Draws with a round pen; the radius is in pixels. A stroke of one point is a dot.
  void draw(const Stroke& stroke, double radius, Colour colour) {
    const auto [left, right] = std::ranges::minmax(stroke, {}, &Point::x);
    const auto [top, bottom] = std::ranges::minmax(stroke, {}, &Point::y);
    const double margin = radius + waveHeight + 1;
    const int lastX = std::min(int(right.x + margin), pictureWidth - 1);
    const int lastY = std::min(int(bottom.y + margin), pictureHeight - 1);
    for (int y = std::max(int(top.y - margin), 0); y <= lastY; ++y) {
      for (int x = std::max(int(left.x - margin), 0); x <= lastX; ++x) {
        const Point at = waved({double(x), double(y)});
        double nearest = distance(at, stroke.front(), stroke.back());
        if (stroke.size() > 2) nearest = distance(at, stroke[0], stroke[1]);
        for (std::size_t i = 2; i < stroke.size(); ++i) {
          nearest = std::min(nearest, distance(at, stroke[i - 1], stroke[i]));
        }
        blend(x, y, colour, std::clamp(radius + 0.5 - nearest, 0.0, 1.0));
      }
    }
  }

  std::vector<std::uint8_t> png() const {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(pixels_.size() * 3);
    for (const Colour& pixel : pixels_) {
      for (const double channel : pixel) bytes.push_back(static_cast<std::uint8_t>(channel));
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = pictureWidth;
    image.height = pictureHeight;
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::vector<std::uint8_t> file(size);
    if (!png_image_write_to_memory(&image, file.data(), &size, 0, bytes.data(), 0, nullptr)) {
      throw std::runtime_error(image.message);
    }
    file.resize(size);
    return file;
  }

 private:
  static constexpr double waveHeight = 2;

  Point waved(Point p) const {
    return {p.x + waveHeight * std::sin(p.y / 11 + phase_), p.y + waveHeight * std::sin(p.x / 15 + phase_)};
  }

  void blend(int x, int y, Colour colour, double share) {
    const int place = y * pictureWidth + x;
    Colour& pixel = pixels_[static_cast<std::size_t>(place)];
    for (std::size_t i = 0; i < pixel.size(); ++i) pixel[i] += (colour[i] - pixel[i]) * share;
  }

  double phase_;
  std::vector<Colour> pixels_;
};

/// The random choices of one picture.
class Chance {
 public:
  explicit Chance(std::uint32_t seed) : engine_(seed) {}

  double between(double low, double high) { return std::uniform_real_distribution(low, high)(engine_); }
  Colour colour(double low, double high) {
    return {between(low, high), between(low, high), between(low, high)};
  }
  Point point() { return {between(0, pictureWidth), between(0, pictureHeight)}; }

 private:
  std::mt19937 engine_;
};

void drawGlyph(Canvas& canvas, char character, Point centre, Chance& chance) {
  const double angle = chance.between(-0.2, 0.2);
  const double width = chance.between(2.3, 2.6);  // pixels per unit of the glyph's box
  const double height = chance.between(2.7, 3.1);
  const Colour ink = chance.colour(0, 100);
  for (Stroke& stroke : glyphStrokes(character)) {
    for (Point& point : stroke) {
      const double x = (point.x - 4) * width;
      const double y = (point.y - 6) * height;
      point = {centre.x + x * std::cos(angle) - y * std::sin(angle),
               centre.y + x * std::sin(angle) + y * std::cos(angle)};
    }
    canvas.draw(stroke, 2.4, ink);
  }
}

}  // namespace

std::vector<std::uint8_t> drawPicture(std::string_view text, std::uint32_t seed) {
  Chance chance(seed);
  Canvas canvas(chance.colour(238, 252), chance.between(0, 2 * std::numbers::pi));

  for (int i = 0; i < 150; ++i)
    canvas.draw({chance.point()}, chance.between(0.4, 1.3), chance.colour(165, 235));
  for (int i = 0; i < 7; ++i) {
    const Point from{-5, chance.between(0, pictureHeight)};
    const Point to{pictureWidth + 5, chance.between(0, pictureHeight)};
    canvas.draw({from, to}, 0.6, chance.colour(160, 215));
  }

  const double step = (pictureWidth - 12) / double(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const Point jitter{chance.between(-1.5, 1.5), chance.between(-4, 4)};
    drawGlyph(canvas, text[i], {6 + step * (double(i) + 0.5) + jitter.x, pictureHeight / 2.0 + jitter.y},
              chance);
  }
  return canvas.png();
}

}  // namespace devservice
