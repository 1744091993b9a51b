#pragma once

#include <cstddef>
#include <functional>

namespace orvane::bench {

// Counts what the program it is linked into allocates, on all threads, in the bytes that the allocator hands
// out. `operator new` and plain allocations, which are those of the C libraries, are counted apart.

struct AllocationCounts {
  std::size_t news = 0;
  std::size_t plain = 0;
};

/// Since the process started.
AllocationCounts allocationCounts() noexcept;

/// Those of the calling thread.
AllocationCounts allocationCountsHere() noexcept;

/// The bytes in use now.
std::size_t allocatedBytes() noexcept;

/// The most bytes that were in use at a time during the call, beyond those in use before.
std::size_t peakBytes(const std::function<void()>& call);

}  // namespace orvane::bench
