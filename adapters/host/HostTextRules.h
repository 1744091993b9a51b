#pragma once

#include <string_view>

#include "orvane/platform/TextRules.h"

namespace orvane {

class HostTextRules final : public TextRules {
 public:
  /// Refuses control characters, space, any of "<>\^{|} and backtick, bytes that are not UTF-8, a percent
  /// sign without two hexadecimal digits, a second "#", unbalanced brackets in the host, and a port that is
  /// not a number up to 65535.
  bool isURL(std::string_view text) const override;
  bool isAlphanumeric(char32_t codePoint) const override;
};

}  // namespace orvane
