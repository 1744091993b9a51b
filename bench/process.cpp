#include "bench/process.h"

#include <filesystem>
#include <malloc.h>
#include <sched.h>
#include <stdexcept>

namespace orvane::bench {

std::string programBeside(const char* program, const char* name) {
  return std::filesystem::path(program).replace_filename(name).string();
}

void pinTo(std::size_t processor) {
  cpu_set_t processors;
  CPU_ZERO(&processors);
  CPU_SET(processor, &processors);
  if (sched_setaffinity(0, sizeof processors, &processors) != 0) throw std::runtime_error("cannot pin");
}

void keepFreedMemory() {
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  mallopt(M_TRIM_THRESHOLD, 256 << 20);
}

}  // namespace orvane::bench
