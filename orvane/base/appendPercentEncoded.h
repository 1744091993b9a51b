#pragma once

#include <string>

#include "orvane/base/ascii.h"

namespace orvane {

/// Appends "%" and the byte `c` as two upper-case hexadecimal digits.
inline void appendPercentEncoded(std::string& text, char c) {
  const auto byte = static_cast<unsigned char>(c);
  text.append({'%', upperHexDigits[byte >> 4], upperHexDigits[byte & 15]});
}

}  // namespace orvane
