#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

/// What makes a fuzzer: called with one input after another.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace orvane {

/// Ends the fuzzer, which then keeps the input, where it does not hold what has to hold.
void require(bool holds, const char* what);

/// Thrown in the fuzzers where the library would stop the process.
struct Stop {
  std::string what;
};

/// What a well-kept library makes of a JSON text under the rules that ours adds; discarded where it refuses.
nlohmann::json readByOther(std::string_view text);

}  // namespace orvane
