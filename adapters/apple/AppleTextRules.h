#pragma once

#include "orvane/platform/TextRules.h"

namespace orvane {

/// Asks NSURL and NSCharacterSet.
class AppleTextRules final : public TextRules {
 public:
  bool isURL(std::string_view text) const override;
  bool isAlphanumeric(char32_t codePoint) const override;
};

}  // namespace orvane
