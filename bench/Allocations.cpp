#include "bench/Allocations.h"

#include <atomic>
#include <malloc.h>
#include <new>

// The C library's own allocator, under the names by which it can still be called when replaced.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace orvane::bench {
namespace {

std::atomic<std::size_t> news = 0;
std::atomic<std::size_t> plain = 0;
std::atomic<std::size_t> inUse = 0;
std::atomic<std::size_t> peak = 0;
thread_local AllocationCounts here;

void countBytes(void* block) noexcept {
  if (!block) return;
  const std::size_t now = inUse += malloc_usable_size(block);
  std::size_t most = peak;
  while (most < now && !peak.compare_exchange_weak(most, now)) {
  }
}

void countPlain() noexcept {
  ++plain;
  ++here.plain;
}

}  // namespace

AllocationCounts allocationCounts() noexcept {
  return {news, plain};
}

AllocationCounts allocationCountsHere() noexcept {
  return here;
}

std::size_t allocatedBytes() noexcept {
  return inUse;
}

std::size_t peakBytes(const std::function<void()>& call) {
  const std::size_t before = inUse;
  peak = before;
  call();
  return peak - before;
}

}  // namespace orvane::bench

using namespace orvane::bench;

extern "C" {

void* malloc(std::size_t size) {
  void* const block = __libc_malloc(size);
  countPlain();
  countBytes(block);
  return block;
}

void* calloc(std::size_t count, std::size_t size) {
  void* const block = __libc_calloc(count, size);
  countPlain();
  countBytes(block);
  return block;
}

void* realloc(void* block, std::size_t size) {
  inUse -= malloc_usable_size(block);
  void* const moved = __libc_realloc(block, size);
  countPlain();
  countBytes(moved);
  return moved;
}

void free(void* block) {
  inUse -= malloc_usable_size(block);
  __libc_free(block);
}
}

void* operator new(std::size_t size) {
  void* const block = __libc_malloc(size);
  if (!block) throw std::bad_alloc();
  ++news;
  ++here.news;
  countBytes(block);
  return block;
}

void operator delete(void* block) noexcept {
  free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  free(block);
}
