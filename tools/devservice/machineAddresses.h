#pragma once

#include <string>
#include <vector>

namespace devservice {

/// Returns the numeric addresses by which other machines can reach this one, IPv6 ones in brackets and only
/// if `withIPv6`. Leaves out link-local ones, which need the name of an interface as well.
std::vector<std::string> machineAddresses(bool withIPv6);

}  // namespace devservice
