#pragma once

#include <cstddef>
#include <string>

namespace orvane::bench {

/// The path of a program that lies beside `program`.
std::string programBeside(const char* program, const char* name);

/// Keeps the calling thread, and the threads it starts from now on, on that processor.
void pinTo(std::size_t processor);

/// Makes the allocator keep what is released. Otherwise it depends on where a block happens to lie whether
/// the system takes it back and must be asked for it again, which costs more than what is measured.
void keepFreedMemory();

}  // namespace orvane::bench
