#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace orvane::test {

/// Returns how many entries a folder has, such as the threads in "/proc/self/task" or the descriptors in
/// "/proc/self/fd".
inline std::ptrdiff_t entries(const char* folder) {
  const std::filesystem::directory_iterator list(folder);
  return std::distance(begin(list), end(list));
}

}  // namespace orvane::test
