#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace devservice {

/// What scripts know in advance about codes and pictures. All other rules stay: a code or a picture's text
/// has to be sent back in time, and can be used once.
struct Predictions {
  std::optional<std::string> code = {};         ///< Of every text message: six digits.
  std::optional<std::string> pictureText = {};  ///< Of every picture: see isPictureText().
  /// Starts the random choices, so that the same calls in the same order get the same pictures and codes.
  std::optional<std::uint32_t> seed = {};
};

/// Returns true if the text is six digits.
bool isCode(std::string_view text);

/// Returns true if the text is four or five capital letters and digits, which can all be drawn.
bool isPictureText(std::string_view text);

}  // namespace devservice
