#pragma once

#include <chrono>
#include <cstdint>

namespace support {

/// Returns the milliseconds since 1970.
inline std::int64_t milliseconds(std::chrono::system_clock::time_point time) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

}  // namespace support
