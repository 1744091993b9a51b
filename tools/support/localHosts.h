#pragma once

#include <string_view>

namespace support {

/// The hosts in a URL that lead to the machine itself, and that no other machine can have.
inline constexpr std::string_view localHosts[] = {"localhost", "127.0.0.1", "[::1]"};

}  // namespace support
