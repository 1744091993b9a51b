#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

/// Called with one input after another.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace orvane {

/// Ends the fuzzer, which then keeps the input, if `holds` is false.
void require(bool holds, const char* what);

/// Thrown in the fuzzers instead of stopping the process.
struct Stop {
  std::string what;
};

/// Returns the value that nlohmann::json reads under the rules that ours adds, or a discarded one. Does not
/// count values, so `text` must be too short for too many.
nlohmann::json readByOther(std::string_view text);

}  // namespace orvane
