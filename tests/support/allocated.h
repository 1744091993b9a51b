#pragma once

#include <cstddef>
#include <malloc.h>

namespace orvane::test {

/// Returns the bytes that are allocated. Zero, so that a test finds nothing wrong, under a sanitizer.
inline std::size_t allocated() {
  const struct mallinfo2 memory = mallinfo2();
  return memory.uordblks + memory.hblkhd;
}

}  // namespace orvane::test
