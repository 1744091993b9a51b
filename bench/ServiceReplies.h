#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "orvane/base/Value.h"

namespace orvane::bench {

/// The picture of the sign-ins, in bytes.
inline constexpr std::size_t usualPicture = 20'000;

/// The pictures that are read without a network, in bytes.
inline constexpr std::array<std::size_t, 3> pictureSizes = {2'000, 20'000, 100'000};

/// How many pictures take turns. A processor learns a single one by heart, branch by branch, and reads it in
/// a third of the time that a new one takes.
inline constexpr std::size_t pictureCount = 64;

/// The picture of that number: bytes as evenly spread as those of a compressed picture.
Bytes makePicture(std::size_t size, std::size_t number);

/// Returns true if it is one of the pictures up to `pictureCount`.
bool isPicture(const Bytes& picture);

/// The service's reply to an accepted picture call.
std::string pictureReply(const Bytes& picture);

/// Its reply to any other accepted call.
std::string tinyReply();

}  // namespace orvane::bench
