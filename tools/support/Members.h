#pragma once

#include <functional>
#include <map>
#include <string>

namespace support {

/// Strings by name: the members of a call's body, or the parameters of a query.
using Members = std::map<std::string, std::string, std::less<>>;

}  // namespace support
